#pragma once

#include <array>

#include "refhost/kestrel/FrameView.h"
#include "refhost/kestrel/PlanarBuffer.h"

namespace RefHost {

/// Fills a buffer with a YCbCr frame's rows from luma row `first` on, codes in the low bits. What
/// lies beyond the picture's edges repeats them; codes beyond the depth become its largest.
/// `zimgPlanes`: the buffer's plane for each component.
void UnpackRows(const FrameView& frame, const std::array<int, 3>& zimgPlanes, int first,
                const PlanarBuffer& buffer);

/// Stores the luma rows from `first` up to `last`, and their chroma, of a buffer that begins at
/// luma row `bufferFirst`. Both first rows are even.
void PackRows(const PlanarBuffer& buffer, const std::array<int, 3>& zimgPlanes, int bufferFirst,
              int first, int last, const FrameView& frame);

}  // namespace RefHost
