#include "tools/quillon/io/Reorient.h"

#include <algorithm>
#include <utility>

#include "tools/quillon/io/FramePixels.h"

namespace Quillon::Cli {

namespace {

struct Position {
  int x;
  int y;
};

/// Where in a stored picture of `width` x `height` the shown pixel comes from.
Position StoredPosition(Position shown, int width, int height, const Orientation& orientation) {
  const bool sideways = orientation.quarterTurns % 2 != 0;
  if (orientation.mirror == Mirror::LeftRight) shown.x = (sideways ? height : width) - 1 - shown.x;
  if (orientation.mirror == Mirror::TopBottom) shown.y = (sideways ? width : height) - 1 - shown.y;
  switch (orientation.quarterTurns) {
    case 1:
      return {width - 1 - shown.y, shown.x};
    case 2:
      return {width - 1 - shown.x, height - 1 - shown.y};
    case 3:
      return {shown.y, height - 1 - shown.x};
    default:
      return shown;
  }
}

}  // namespace

PX::VideoFrameRef Reorient(const StillSource& source, const PX::VideoFrameRef& frame,
                           const Orientation& orientation) {
  const FramePixels from = PixelsOf(frame);
  const bool sideways = orientation.quarterTurns % 2 != 0;
  PX::VideoFrameRef turned =
      MakeFrame(source, orvmediatypes::kLinearFloatBGRA, sideways ? from.height : from.width,
                sideways ? from.width : from.height, frame->GetColorSpace());
  const FramePixels to = PixelsOf(turned);
  for (int y = 0; y < to.height; ++y) {
    float* row = to.Row<float>(y);
    for (int x = 0; x < to.width; ++x) {
      const Position stored = StoredPosition({x, y}, from.width, from.height, orientation);
      std::copy_n(from.Row<float>(stored.y) + 4 * std::ptrdiff_t{stored.x}, 4,
                  row + 4 * std::ptrdiff_t{x});
    }
  }
  return turned;
}

}  // namespace Quillon::Cli
