#pragma once

#include "host/orvmediatypes/ColorSpace.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/video/AvHandles.h"

namespace Quillon::Cli {

/// What a clip says of its colours and its light: H.273 code points, the mastering display (SMPTE
/// ST 2086) and the content light level (CTA-861.3). 0: not said.
struct ClipTags {
  orvmediatypes::color::ColorDescription colors;
  ContentLight light;
  /// Luminance that the file of a still gives its linear 1.0, in nits.
  float whiteNits = 0.0F;
  friend bool operator==(const ClipTags&, const ClipTags&) = default;
};

/// The tags of a decoded frame; where it says nothing, those of its stream in the container.
/// Mastering primaries that are listed in another order than red, green, blue are put right.
/// Unspecified code points are 0. YCbCr that does not tell its matrix keeps 0 only for RGB: other
/// frames get the matrix of their primaries, BT.709's where these are not told either; YCbCr that
/// does not tell its range is narrow, RGB full.
ClipTags TagsOf(const AVFrame& frame, const AVStream& stream);

/// Puts the colours' tags on an encoder. Range, matrix and chroma location count as they stand.
void TagEncoder(const orvmediatypes::color::ColorDescription& colors, AVCodecContext& encoder);

/// Puts mastering display and light level, where they are given, on a stream of a container.
void TagStream(const ClipTags& tags, AVStream& stream);

}  // namespace Quillon::Cli
