#pragma once

#include "refhost/kestrel/FrameView.h"

namespace RefHost {

/// The rows that zimg is given for a band: the band, what resampled chroma needs around it, and
/// what makes chroma samples whole. All windows of a picture are of one size, so that one graph
/// serves all.
class RowWindow {
 public:
  RowWindow(const FrameView& source, const FrameView& destination);

  int Width() const { return width_; }
  int Height() const { return height_; }
  /// The window's first row for the band that begins at a row. Even where chroma is halved.
  int FirstRow(int bandFirst) const;

 private:
  int margin_;
  int pictureHeight_;
  int width_;
  int height_;
};

}  // namespace RefHost
