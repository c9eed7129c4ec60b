#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>

#include "host/pavix/IVideoFrame.h"

namespace RefHost {

inline constexpr int kMaxPlanes = 3;

/// Width and height, and bytes, of the largest frames.
inline constexpr int kLargestSide = 1 << 30;
inline constexpr std::int64_t kLargestFrameBytes = std::int64_t{1} << 38;

/// One plane of a frame. Sizes are in sample positions: a pair of Cb and Cr is one, as are the
/// four components of an interleaved pixel.
struct Plane {
  void* data = nullptr;
  std::int32_t rowBytes = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
};

/// The planes of a frame in system memory. The memory lives as long as the frame.
struct IVideoFramePlaneAccess {
  virtual std::int32_t GetPlaneCount() const = 0;
  /// An empty plane when there is no such plane.
  virtual Plane GetPlane(std::int32_t index) const = 0;

 protected:
  ~IVideoFramePlaneAccess() = default;
};

/// Memory that a frame shows without owning it. Any alignment.
struct BorrowedMemory {
  std::array<void*, kMaxPlanes> planes{};
  /// Called once, when the frame is gone. Not called when no frame was made.
  std::function<void()> release{};
};

/// What a frame in system memory is made of.
struct SystemFrameLayout {
  orvmediatypes::PixelFormat format{};
  int width = 0;
  int height = 0;
  /// Where the frame lies.
  int left = 0;
  int top = 0;
  orvmediatypes::PixelAspectRatio aspect{};
  orvmediatypes::color::ColorSpace colorSpace{};
  orvmediatypes::FieldType fieldType = orvmediatypes::FieldType::Progressive;
  /// Row bytes by plane; 0: packed rows for interleaved formats, otherwise the next multiple of 64.
  std::array<std::int32_t, kMaxPlanes> rowBytes{};
  /// Without it the frame has memory of its own, contents undefined.
  std::optional<BorrowedMemory> borrowed{};
};

/// Makes a frame and puts it into `frame`. 0, or a negative code and `frame` as it was: 0xA00F000C
/// for a format that is not known; 0xA00F000E for sizes below 1 or above `kLargestSide`, rows
/// shorter than their samples, borrowed planes that are null, frames above `kLargestFrameBytes`,
/// and frames that there is no memory for.
///
/// The frame shows `PX::IVideoFrame`, `IVideoFramePlaneAccess`, `KS::IVideoFrameMemoryAccess` and
/// `KS::IVideoFrame2DPixelMemoryAccess`, the last two of the first plane.
int CreateSystemFrame(PX::VideoFrameRef& frame, const SystemFrameLayout& layout);

}  // namespace RefHost
