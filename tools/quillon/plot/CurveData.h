#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Quillon::Cli {

/// What is plotted and listed of a few tone curves. Luminances in nits.

struct CurveKnee {
  double source = 0.0;
  double result = 0.0;
};

/// The colours of the strip as one algorithm maps them: row by row, a sample for each luminance of
/// the ramp.
struct MappedHues {
  /// Linear light of the destination's red, green and blue.
  std::vector<std::array<double, 3>> nits;
  /// The same for the eye: sRGB whose white is the target peak.
  std::vector<std::array<std::uint8_t, 3>> shown;
};

/// One algorithm's mapping of the ramp.
struct AlgorithmCurve {
  std::string name;      ///< as `--algorithm` spells it
  std::string resolved;  ///< what the automatic choice chose; else empty
  std::vector<double> resultNits;
  std::optional<CurveKnee> knee;
  MappedHues hues;          ///< empty where none were asked for
  std::string explanation;  ///< everything that was resolved, in lines
};

struct CurveData {
  /// The grey ramp, rising from 0. What the engine is given, rounded to float.
  std::vector<float> sourceNits;
  std::vector<AlgorithmCurve> curves;
  std::vector<std::string> hueNames;  ///< rows of the strips; empty where none were asked for
  double whiteNits = 0.0;             ///< reference white
  double sourcePeakNits = 0.0;
  double targetPeakNits = 0.0;
  std::string source;       ///< colour space mapped from, for the reader
  std::string destination;  ///< and mapped to
  double gain = 1.0;
  double colorPreservation = 0.5;

  double LargestNits() const { return sourceNits.back(); }
};

}  // namespace Quillon::Cli
