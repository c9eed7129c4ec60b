#include "tools/quillon/lut/LutLattice.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

namespace Quillon::Cli {

namespace {

using Weights = std::array<double, 3>;

/// The cell of a signal, and where in it the signal lies, 0 to 1 along each axis.
struct Place {
  std::size_t corner = 0;
  Weights share{};
};

std::array<std::size_t, 3> Strides(const LutLattice& lattice) {
  const auto size = static_cast<std::size_t>(lattice.size);
  return {1, size, size * size};
}

Place Locate(const LutLattice& lattice, const Signal& signal) {
  const auto strides = Strides(lattice);
  Place place;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double scaled = double{signal[axis]} * (lattice.size - 1);
    const int cell = std::clamp(static_cast<int>(scaled), 0, lattice.size - 2);
    place.corner += strides[axis] * static_cast<std::size_t>(cell);
    place.share[axis] = scaled - cell;
  }
  return place;
}

void AddWeighted(Weights& sum, double weight, const Signal& result) {
  for (std::size_t c = 0; c < 3; ++c) sum[c] += weight * double{result[c]};
}

Signal AsSignal(const Weights& sum) {
  return {static_cast<float>(sum[0]), static_cast<float>(sum[1]), static_cast<float>(sum[2])};
}

template <class AddPoint>
void ForEachPoint(int count, const AddPoint& add) {
  for (int blue = 0; blue < count; ++blue) {
    for (int green = 0; green < count; ++green) {
      for (int red = 0; red < count; ++red) add(red, green, blue);
    }
  }
}

/// Multiples of the powers of the root of x^4 = x + 1, whose fractional parts fill a cube evenly.
void AddEvenSignals(std::vector<Signal>& signals) {
  constexpr double kRoot = 1.2207440846057596;
  constexpr int kCount = 1 << 18;
  constexpr Weights kSteps = {1.0 / kRoot, 1.0 / (kRoot * kRoot), 1.0 / (kRoot * kRoot * kRoot)};
  for (int i = 1; i <= kCount; ++i) {
    Weights point{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double multiple = i * kSteps[axis];
      point[axis] = multiple - std::floor(multiple);
    }
    signals.push_back(AsSignal(point));
  }
}

}  // namespace

std::vector<Signal> LatticeSignals(int size) {
  std::vector<Signal> signals;
  const auto at = [size](int step) {
    return static_cast<float>(static_cast<double>(step) / (size - 1));
  };
  ForEachPoint(size, [&](int red, int green, int blue) {
    signals.push_back({at(red), at(green), at(blue)});
  });
  return signals;
}

std::vector<Signal> SignalsOffLattice(int size) {
  std::vector<Signal> signals;
  const auto middle = [size](int cell) { return static_cast<float>((cell + 0.5) / (size - 1)); };
  ForEachPoint(size - 1, [&](int red, int green, int blue) {
    signals.push_back({middle(red), middle(green), middle(blue)});
  });
  AddEvenSignals(signals);
  return signals;
}

Signal InterpolateTrilinear(const LutLattice& lattice, const Signal& signal) {
  const Place place = Locate(lattice, signal);
  const auto strides = Strides(lattice);
  Weights sum{};
  for (unsigned corner = 0; corner < 8; ++corner) {
    std::size_t index = place.corner;
    double weight = 1.0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const bool upper = ((corner >> axis) & 1U) != 0;
      index += upper ? strides[axis] : 0;
      weight *= upper ? place.share[axis] : 1.0 - place.share[axis];
    }
    AddWeighted(sum, weight, lattice.results[index]);
  }
  return AsSignal(sum);
}

Signal InterpolateTetrahedral(const LutLattice& lattice, const Signal& signal) {
  const Place place = Locate(lattice, signal);
  const auto strides = Strides(lattice);
  std::array<std::size_t, 3> axes{};
  std::iota(axes.begin(), axes.end(), std::size_t{0});
  std::stable_sort(axes.begin(), axes.end(),
                   [&](std::size_t a, std::size_t b) { return place.share[a] > place.share[b]; });
  // From the lowest corner to the highest, along the axis of the largest share first.
  Weights sum{};
  std::size_t index = place.corner;
  double above = 1.0;
  for (const std::size_t axis : axes) {
    AddWeighted(sum, above - place.share[axis], lattice.results[index]);
    above = place.share[axis];
    index += strides[axis];
  }
  AddWeighted(sum, above, lattice.results[index]);
  return AsSignal(sum);
}

}  // namespace Quillon::Cli
