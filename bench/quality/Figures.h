#pragma once

#include <string>
#include <vector>

#include "bench/quality/Charts.h"
#include "bench/quality/Metrics.h"

namespace Quality {

/// Of one group of colours.
struct ColorFigures {
  HueError hue;
  double chromaLost = 0.0;
  friend bool operator==(const ColorFigures&, const ColorFigures&) = default;
};

/// What came of the charts of one peak.
struct Figures {
  ColorFigures insideBt709;
  ColorFigures insideP3;
  ColorFigures outsideBt709;
  ColorFigures patches;
  OrderViolations order;  ///< of all ramps
  std::size_t bands = 0;
  double clippedShare = 0.0;
  friend bool operator==(const Figures&, const Figures&) = default;
};

/// `result`: the charts' pixels, mapped.
Figures Measure(const Charts& charts, const std::vector<Signal>& result);

/// What a display shows of the pixels.
std::vector<Light> ShownBy(const std::vector<Signal>& pixels);

}  // namespace Quality
