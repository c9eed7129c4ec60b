#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/compare/PixelMarks.h"

namespace Quillon::Cli {

struct CompareSettings {
  int white = 203;  ///< nits of graphics white, 1.0 in linear light
  /// ITU-T H.273 primaries that colours are out of gamut of.
  std::uint8_t gamutPrimaries = 9;
};

/// Delta-E ITP over the compared pixels. A percentile is the smallest value that at least so many
/// pixels do not exceed; the median is the 50th.
struct DeltaEFigures {
  double mean = 0.0;
  double median = 0.0;
  double percentile95 = 0.0;
  double percentile99 = 0.0;
  double max = 0.0;
  /// The first pixel that has `max`, rows from the top.
  int maxX = 0;
  int maxY = 0;
};

/// Mean squared error over the compared pixels and R, G and B, full scale being 1.
struct SignalError {
  double meanSquared = 0.0;

  /// Peak signal-to-noise ratio in dB; nothing where the signals are the same and it is infinite.
  std::optional<double> PsnrDb() const;
};

/// What a comparison of two pictures found. Pixels with a component that is not finite, in either
/// picture, are not compared.
struct Comparison {
  int width = 0;
  int height = 0;
  std::int64_t comparedPixels = 0;
  /// Delta-E ITP of each pixel, row by row; not a number where it is not compared.
  std::vector<float> deltaE;
  PixelMarks marksA;
  PixelMarks marksB;
  /// These are empty where no pixel is compared.
  std::optional<DeltaEFigures> deltaEFigures;
  /// On the PQ signal of BT.2020 display light; light below 0 counts as 0.
  std::optional<SignalError> pqError;
  /// On the pictures' own R'G'B' signals; also empty where they are in different colour spaces, and
  /// in linear light, which has no full scale.
  std::optional<SignalError> ownError;

  std::int64_t Pixels() const { return std::int64_t{width} * height; }
};

/// Compares two tagged frames in system memory, of any format. The result does not depend on
/// threads. Throws CommandError: NotSupported for frames of different sizes.
Comparison ComparePictures(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b,
                           const CompareSettings& settings);

}  // namespace Quillon::Cli
