#pragma once

#include <array>
#include <vector>

namespace Quillon::Cli {

/// Red, green and blue of a signal.
using Signal = std::array<float, 3>;

/// A 3D LUT over signals from 0 to 1: the results at size x size x size equally spaced points, red
/// fastest, then green.
struct LutLattice {
  int size = 0;  ///< 2 at least
  std::vector<Signal> results;
};

/// The signals that a lattice has results for, in their order.
std::vector<Signal> LatticeSignals(int size);

/// The middles of the lattice's cells, and 2^18 signals that fill the cube evenly.
std::vector<Signal> SignalsOffLattice(int size);

/// What programs that apply the LUT make of a signal from 0 to 1: from the eight corners of its
/// cell, or from four of them.
Signal InterpolateTrilinear(const LutLattice& lattice, const Signal& signal);
Signal InterpolateTetrahedral(const LutLattice& lattice, const Signal& signal);

}  // namespace Quillon::Cli
