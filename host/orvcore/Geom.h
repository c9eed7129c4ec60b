#pragma once

#include <cstdint>

namespace orvcore::geom {

template <class T>
struct PointT {
  T x{};
  T y{};
  friend bool operator==(const PointT&, const PointT&) = default;
};

/// Where a frame lies and how large it is, in pixels.
struct Bounds {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  friend bool operator==(const Bounds&, const Bounds&) = default;
};
static_assert(sizeof(Bounds) == 16);

}  // namespace orvcore::geom
