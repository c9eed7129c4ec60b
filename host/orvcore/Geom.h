#pragma once

#include <cstdint>

// Plain records, copied by value. Columns count to the right and rows down, from 0. Units are
// pixels of the frame itself, whatever the format and the aspect of a pixel.

namespace orvcore::geom {

/// A place in a picture: columns to the right, rows down. The engine only copies the origin of a
/// frame from one to the other.
template <class T>
struct PointT {
  T x{};
  T y{};
  friend bool operator==(const PointT&, const PointT&) = default;
};

/// Where a frame lies and how large it is, in pixels. The order of the fields is fixed: the third
/// is the width and the fourth the height. The engine computes with these two, neither of which a
/// frame has below 0, and compares all four.
struct Bounds {
  /// Place of the frame's first pixel in some larger picture. Two frames that lie in different
  /// places do not match, though they be of one size.
  std::int32_t left = 0;
  std::int32_t top = 0;
  /// Columns, and rows below.
  std::int32_t width = 0;
  std::int32_t height = 0;
  /// Equal when all four values are.
  friend bool operator==(const Bounds&, const Bounds&) = default;
};
static_assert(sizeof(Bounds) == 16);

}  // namespace orvcore::geom
