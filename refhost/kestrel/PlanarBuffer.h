#pragma once

#include <array>
#include <cstddef>

#include <zimg.h>

#include "refhost/orvcore/RecycledMemory.h"

namespace RefHost {

/// Memory for a picture of zimg's: three planes, rows aligned as zimg wants them.
class PlanarBuffer {
 public:
  explicit PlanarBuffer(const zimg_image_format& format);

  template <class Sample>
  Sample* Row(int plane, int row) const {
    return reinterpret_cast<Sample*>(memory_.Data() + offsets_[static_cast<std::size_t>(plane)] +
                                     static_cast<std::size_t>(row) * RowBytes(plane));
  }

  /// Samples in a row of a plane, and rows of it.
  int Width(int plane) const;
  int Height(int plane) const;

  zimg_image_buffer_const Input() const;
  zimg_image_buffer Output() const;

 private:
  std::size_t RowBytes(int plane) const;
  std::size_t PlaneBytes(int plane) const;

  zimg_image_format format_;
  std::array<std::size_t, 3> offsets_;
  orvcore::allocator::RecycledMemory memory_;
};

}  // namespace RefHost
