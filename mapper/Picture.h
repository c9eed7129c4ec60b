#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "mapper/Colors.h"
#include "mapper/Result.h"

namespace Quillon {
namespace [[gnu::visibility("default")]] Mapper {

/// Layout of a picture's samples. Words are in the processor's byte order.
struct PixelFormat {
  enum class Layout {
    BGRA,        ///< one plane: blue, green, red, alpha interleaved
    Planar,      ///< luma, Cb and Cr in a plane each; with the matrix 0, green, blue and red
    SemiPlanar,  ///< luma in one plane, pairs of Cb and Cr in another
  };
  enum class Samples { Integer, Half, Float };
  /// Chroma samples: half as many each way (rounded up), half as many across, as many.
  enum class Chroma { C420, C422, C444 };

  Layout layout = Layout::BGRA;
  Samples samples = Samples::Integer;
  /// BGRA: 8 or 16 for integers, 16 for half, 32 for float. Else 8, 10, 12 or 16; 10 and 12 bits
  /// lie in the low bits of 16-bit words in planar formats, in the high bits in semi-planar ones.
  int bits = 8;
  Chroma chroma = Chroma::C444;

  friend bool operator==(const PixelFormat&, const PixelFormat&) = default;
};

// By the names that FourCCs gave them.
inline constexpr PixelFormat kBGRA8{};
inline constexpr PixelFormat kBGRA16{.bits = 16};
inline constexpr PixelFormat kBGRAHalf{.samples = PixelFormat::Samples::Half, .bits = 16};
inline constexpr PixelFormat kBGRAFloat{.samples = PixelFormat::Samples::Float, .bits = 32};
inline constexpr PixelFormat kI420{.layout = PixelFormat::Layout::Planar,
                                   .chroma = PixelFormat::Chroma::C420};
inline constexpr PixelFormat kI010{
    .layout = PixelFormat::Layout::Planar, .bits = 10, .chroma = PixelFormat::Chroma::C420};
inline constexpr PixelFormat kNV12{.layout = PixelFormat::Layout::SemiPlanar,
                                   .chroma = PixelFormat::Chroma::C420};
inline constexpr PixelFormat kP010{
    .layout = PixelFormat::Layout::SemiPlanar, .bits = 10, .chroma = PixelFormat::Chroma::C420};
inline constexpr PixelFormat kP016{
    .layout = PixelFormat::Layout::SemiPlanar, .bits = 16, .chroma = PixelFormat::Chroma::C420};

/// A picture in the caller's memory, which lives at least as long as the call that is given it.
/// Any alignment. Planes that the format has not are ignored.
template <class Byte>
struct BasicPicture {
  PixelFormat format{};
  int width = 0;  ///< in pixels, at least 1
  int height = 0;
  std::array<Byte*, 3> planes{};
  /// From one row of a plane to the next, at least the bytes of its samples.
  std::array<std::int32_t, 3> rowBytes{};
};
using Picture = BasicPicture<void>;
using ConstPicture = BasicPicture<const void>;

/// The share of the pixels, in %, whose light a steady peak is not below.
inline constexpr double kSteadyPercent = 99.99;

/// Light levels of a picture, on the largest of R, G and B of a pixel (CTA-861.3).
struct LightLevels {
  double peakNits = 0.0;
  double averageNits = 0.0;
  /// What `percent` % of the pixels do not exceed: the peak to map from. A few pixels that are too
  /// bright do not move it.
  double steadyPeakNits = 0.0;
};

/// Measures a picture in `colors`, whose 1.0 in linear light is `white` nits: in BT.2020 primaries
/// where it is PQ or scene-linear, whatever its own, else in its own. Components that are not
/// finite or lie below 0 count as 0. `percent` is above 0 and at most 100. Any thread.
Result<LightLevels> MeasureLight(const ConstPicture& picture, const ColorDescription& colors,
                                 int white, double percent = kSteadyPercent);

}  // namespace Mapper
}  // namespace Quillon
