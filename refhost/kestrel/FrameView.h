#pragma once

#include <array>
#include <cstddef>

#include "host/pavix/IVideoFrame.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"

namespace RefHost {

/// The pixels of a frame in system memory, valid while the frame lives. Every row holds its
/// samples.
struct FrameView {
  orvmediatypes::PixelFormat format;
  FormatInfo info;
  int width = 0;
  int height = 0;
  std::array<Plane, kMaxPlanes> planes{};
  /// Where not all rows are held at once, how many are: a row lies where it does modulo these.
  int heldRows = 0;

  std::byte* Row(int plane, int row) const {
    const Plane& at = planes[static_cast<std::size_t>(plane)];
    const int place = heldRows == 0 ? row : row % heldRows;
    return static_cast<std::byte*>(at.data) + std::ptrdiff_t{at.rowBytes} * place;
  }

  /// Bytes of a plane's row that hold samples.
  std::size_t RowSize(int plane) const;
};

/// 0, or `kNotSupported` for a format that is not known, `kInvalidFrame` for a frame whose pixels
/// cannot be had. Any host's interleaved frames do; YCbCr frames show `IVideoFramePlaneAccess`.
int ViewFrame(const PX::VideoFrameRef& frame, FrameView& view);

/// Whether some byte may belong to the rows of both.
bool ShareMemory(const FrameView& first, const FrameView& second);

}  // namespace RefHost
