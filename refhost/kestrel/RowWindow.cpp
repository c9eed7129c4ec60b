#include "refhost/kestrel/RowWindow.h"

#include <algorithm>

#include "refhost/kestrel/BandCopy.h"

namespace RefHost {

namespace {

int WholeChroma(int size, int shift) { return ((size + shift) >> shift) << shift; }

}  // namespace

RowWindow::RowWindow(const FrameView& source, const FrameView& destination)
    // Linear resampling reaches two rows beyond a band, on each side whose chroma is halved.
    : margin_(2 * (source.info.ChromaShiftY() + destination.info.ChromaShiftY())),
      pictureHeight_(WholeChroma(
          source.height, std::max(source.info.ChromaShiftY(), destination.info.ChromaShiftY()))),
      width_(WholeChroma(source.width,
                         std::max(source.info.ChromaShiftX(), destination.info.ChromaShiftX()))),
      height_(std::min(pictureHeight_, kBandRows + 2 * margin_)) {}

int RowWindow::FirstRow(int bandFirst) const {
  return std::clamp(bandFirst - margin_, 0, pictureHeight_ - height_);
}

}  // namespace RefHost
