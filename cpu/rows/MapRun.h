#pragma once

// Whole runs of pixels through the curves, a vector of lanes at a time. Includes Lanes.h, and is
// included like it.

#include "cpu/rows/Lanes.h"
#include "cpu/rows/RowCurves.h"
#include "curves/Bt2446A.h"
#include "curves/Car.h"
#include "curves/GamutDesaturation.h"
#include "curves/GamutReinhard.h"
#include "curves/HighlightDesaturation.h"
#include "curves/HuePreservation.h"

namespace Quillon {
namespace {

constexpr int kFloatsPerPixel = 4;

/// Reads a vector of lanes from any place.
Lanes LoadLanes(const float* from) {
  Lanes lanes;
  __builtin_memcpy(&lanes, from, sizeof lanes);
  return lanes;
}

void StoreLanes(float* to, Lanes lanes) { __builtin_memcpy(to, &lanes, sizeof lanes); }

/// Four vectors of interleaved pixels to one vector a channel, or back. The order of the pixels
/// within a vector is what the registers' own unpacking makes it.
void Transpose(Lanes* v) {
  const Lanes low01 = UnpackLow(v[0], v[1]);
  const Lanes high01 = UnpackHigh(v[0], v[1]);
  const Lanes low23 = UnpackLow(v[2], v[3]);
  const Lanes high23 = UnpackHigh(v[2], v[3]);
  v[0] = UnpackLowPairs(low01, low23);
  v[1] = UnpackHighPairs(low01, low23);
  v[2] = UnpackLowPairs(high01, high23);
  v[3] = UnpackHighPairs(high01, high23);
}

void LoadPixels(const float* from, Lanes* channels) {
  for (int i = 0; i < kFloatsPerPixel; ++i) channels[i] = LoadLanes(from + i * kLanes);
  Transpose(channels);
}

void StorePixels(float* to, Lanes* channels) {
  Transpose(channels);
  for (int i = 0; i < kFloatsPerPixel; ++i) StoreLanes(to + i * kLanes, channels[i]);
}

// --- steps on one vector of pixels ------------------------------------------------------------

struct NoStep {
  explicit NoStep(const RowCurves& /*curves*/) {}
  void operator()(Lanes* /*pixel*/) const {}
};

struct ReinhardStep {
  explicit ReinhardStep(const RowCurves& curves) : limit(curves.gamutParams[0]) {}
  void operator()(Lanes* pixel) const { CompressGamutReinhard(pixel, limit); }
  float limit;
};

struct DesaturationStep {
  explicit DesaturationStep(const RowCurves& curves)
      : red(curves.gamutParams[0]), green(curves.gamutParams[1]), blue(curves.gamutParams[2]) {}
  void operator()(Lanes* pixel) const { CompressGamutDesaturation(pixel, red, green, blue); }
  float red;
  float green;
  float blue;
};

struct HuePreservingStep {
  explicit HuePreservingStep(const RowCurves& curves)
      : gain(curves.gain),
        sourcePeak(curves.toneParams[0]),
        knee(curves.toneParams[1]),
        destinationPeak(curves.toneParams[2]),
        colorPreservation(curves.colorPreservation) {}
  void operator()(Lanes* pixel) const {
    HuePreservingDesaturation(pixel, gain, sourcePeak, knee, destinationPeak, colorPreservation);
  }
  float gain;
  float sourcePeak;
  float knee;
  float destinationPeak;
  float colorPreservation;
};

/// Highlight desaturation, whose threshold and weights stand at different places of the curves'
/// parameters.
struct HighlightStep {
  HighlightStep(const RowCurves& curves, int threshold, int weights)
      : gain(curves.gain),
        threshold(curves.toneParams[threshold]),
        peak(curves.peak),
        colorPreservation(curves.colorPreservation),
        red(curves.toneParams[weights]),
        green(curves.toneParams[weights + 1]),
        blue(curves.toneParams[weights + 2]) {}
  void operator()(Lanes* pixel) const {
    DesaturateHighlight(pixel, gain, threshold, peak, colorPreservation, red, green, blue);
  }
  float gain;
  float threshold;
  float peak;
  float colorPreservation;
  float red;
  float green;
  float blue;
};

struct CarStep {
  explicit CarStep(const RowCurves& curves)
      : highlight(curves, 0, 4),
        knee(curves.toneParams[0]),
        a(curves.toneParams[1]),
        b(curves.toneParams[2]),
        destinationPeak(curves.toneParams[3]) {}
  void operator()(Lanes* pixel) const {
    highlight(pixel);
    ToneMapCar(pixel, knee, a, b, destinationPeak);
  }
  HighlightStep highlight;
  float knee;
  float a;
  float b;
  float destinationPeak;
};

struct Bt2390HighlightStep : HighlightStep {
  explicit Bt2390HighlightStep(const RowCurves& curves) : HighlightStep(curves, 9, 10) {}
};

/// Both steps on a run, one sweep over memory. What is left over at the end goes through a block
/// of its own, filled up with black.
template <class Gamut, class Tone>
void MapBlocks(const RowCurves& curves, float* pixels, std::size_t count) {
  const Gamut gamut(curves);
  const Tone tone(curves);
  const auto map = [&](float* block) {
    Lanes channels[kFloatsPerPixel];
    LoadPixels(block, channels);
    gamut(channels);
    tone(channels);
    StorePixels(block, channels);
  };
  for (; count >= kLanes; count -= kLanes, pixels += kLanes * kFloatsPerPixel) map(pixels);
  if (count == 0) return;
  float rest[kLanes * kFloatsPerPixel] = {};
  __builtin_memcpy(rest, pixels, count * kFloatsPerPixel * sizeof(float));
  map(rest);
  __builtin_memcpy(pixels, rest, count * kFloatsPerPixel * sizeof(float));
}

}  // namespace
}  // namespace Quillon
