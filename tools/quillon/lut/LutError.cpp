#include "tools/quillon/lut/LutError.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/lut/LutSignals.h"
#include "tools/quillon/picture/DeltaEItp.h"
#include "tools/quillon/picture/Frames.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorSpace;

namespace {

using Interpolate = Signal (*)(const LutLattice&, const Signal&);

std::vector<ICtCp> ColorsOf(const std::vector<Signal>& signals, const ColorSpace& colorSpace,
                            int white) {
  orvmediatypes::color::ColorDescription light;
  light.primaries = RefHost::kPrimariesBT2020;
  light.transfer = RefHost::kTransferLinear;
  const PX::VideoFrameRef frame =
      ConvertToFloat(FrameOfSignals(signals, colorSpace), ColorSpace(light), white);
  std::vector<ICtCp> colors;
  colors.reserve(signals.size());
  for (const Signal& linear : SignalsOfFrame(frame, signals.size())) {
    colors.push_back(ICtCpOfNits(double{linear[0]} * white, double{linear[1]} * white,
                                 double{linear[2]} * white));
  }
  return colors;
}

void MeasureSignals(const std::vector<Signal>& found, const std::vector<Signal>& expected,
                    InterpolationError& error) {
  double sum = 0.0;
  for (std::size_t i = 0; i < found.size(); ++i) {
    for (std::size_t c = 0; c < 3; ++c) {
      const double distance = std::abs(double{found[i][c]} - double{expected[i][c]});
      sum += distance;
      error.signalMax = std::max(error.signalMax, distance);
    }
  }
  error.signalMean = sum / (3.0 * static_cast<double>(found.size()));
}

void MeasureColors(const std::vector<ICtCp>& found, const std::vector<ICtCp>& expected,
                   InterpolationError& error) {
  std::vector<double> distances(found.size());
  double sum = 0.0;
  for (std::size_t i = 0; i < found.size(); ++i) {
    distances[i] = DeltaEItp(found[i], expected[i]);
    sum += distances[i];
  }
  error.deltaEMean = sum / static_cast<double>(found.size());
  error.deltaEMax = *std::max_element(distances.begin(), distances.end());
  const auto last =
      distances.begin() + static_cast<std::ptrdiff_t>((found.size() * 99 + 99) / 100 - 1);
  std::nth_element(distances.begin(), last, distances.end());
  error.deltaE99 = *last;
}

std::string DescribeInterpolation(const InterpolationError& error) {
  constexpr double kLargestCode = 255.0;
  std::ostringstream text;
  text << std::setprecision(3) << "signal max " << error.signalMax << ", mean " << error.signalMean
       << " (8-bit codes: max " << error.signalMax * kLargestCode << ", mean "
       << error.signalMean * kLargestCode << "); delta-E ITP max " << error.deltaEMax << ", 99% "
       << error.deltaE99 << ", mean " << error.deltaEMean;
  return text.str();
}

}  // namespace

LutError MeasureLutError(const LutLattice& lattice, const std::vector<Signal>& signals,
                         const std::vector<Signal>& engineResults, const ColorSpace& colorSpace,
                         int white) {
  const std::vector<ICtCp> engineColors = ColorsOf(engineResults, colorSpace, white);
  const auto measure = [&](Interpolate interpolate) {
    std::vector<Signal> found;
    found.reserve(signals.size());
    for (const Signal& signal : signals) found.push_back(interpolate(lattice, signal));
    InterpolationError error;
    MeasureSignals(found, engineResults, error);
    MeasureColors(ColorsOf(found, colorSpace, white), engineColors, error);
    return error;
  };
  return {signals.size(), measure(InterpolateTetrahedral), measure(InterpolateTrilinear)};
}

void DescribeLutError(std::ostream& out, const LutError& error, const char* prefix) {
  out << prefix << "distance from the engine at " << error.points
      << " signals off the lattice, largest component and delta-E ITP (ITU-R BT.2124):\n"
      << prefix << "  tetrahedral  " << DescribeInterpolation(error.tetrahedral) << '\n'
      << prefix << "  trilinear    " << DescribeInterpolation(error.trilinear) << '\n';
}

}  // namespace Quillon::Cli
