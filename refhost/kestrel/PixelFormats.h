#pragma once

#include <cstdint>
#include <optional>

#include "host/orvmediatypes/PixelFormat.h"

namespace RefHost {

// Four interleaved components: blue, green, red, alpha. Integers are full range.
inline constexpr orvmediatypes::PixelFormat kBgra8{0x61724742U, 0x00080130U};
inline constexpr orvmediatypes::PixelFormat kBgra16{0x61724742U, 0x00080134U};
inline constexpr orvmediatypes::PixelFormat kBgraHalf{0x61724742U, 0x00080136U};
inline constexpr orvmediatypes::PixelFormat kBgraFloat = orvmediatypes::kLinearFloatBGRA;

/// How many chroma samples there are: half as many as luma samples each way, half as many across,
/// or as many. Odd sizes round up.
enum class ChromaFormat { C420, C422, C444 };

/// Luma, Cb and Cr in a plane each. `bits` is 8, 10, 12 or 16; 10 and 12 bits lie in the low bits
/// of 16-bit words. Other depths give a format that is not known. Where the colour space's matrix
/// is the identity, the planes hold green, blue and red.
orvmediatypes::PixelFormat PlanarYCbCr(ChromaFormat chroma, int bits);

/// Luma in one plane, pairs of Cb and Cr in another. 10 and 12 bits lie in the high bits of 16-bit
/// words, the low bits are 0 (as in P010).
orvmediatypes::PixelFormat SemiPlanarYCbCr(ChromaFormat chroma, int bits);

enum class FrameLayout { InterleavedBGRA, PlanarYCbCr, SemiPlanarYCbCr };
enum class SampleType { UnsignedInteger, Half, Float };

struct FormatInfo {
  FrameLayout layout = FrameLayout::InterleavedBGRA;
  SampleType sampleType = SampleType::UnsignedInteger;
  /// Bits of a sample that count.
  int bits = 0;
  int bytesPerSample = 0;
  /// C444 for interleaved formats.
  ChromaFormat chroma = ChromaFormat::C444;
  int planeCount = 1;

  bool IsYCbCr() const { return layout != FrameLayout::InterleavedBGRA; }
  /// How often a chroma plane is halved each way.
  int ChromaShiftX() const { return chroma == ChromaFormat::C444 ? 0 : 1; }
  int ChromaShiftY() const { return chroma == ChromaFormat::C420 ? 1 : 0; }
  /// Samples that a plane holds for one position: 4 for interleaved BGRA, 2 for pairs of Cb and Cr.
  int SamplesPerPosition(int plane) const;
};

/// Nothing for formats that are not known.
std::optional<FormatInfo> DescribeFormat(orvmediatypes::PixelFormat format);

}  // namespace RefHost
