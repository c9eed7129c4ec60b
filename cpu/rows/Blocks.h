#pragma once

// Curves that take a vector of pixels from memory, map it and put it back. Includes Lanes.h, and is
// included like it.

#include "cpu/rows/Lanes.h"
#include "cpu/rows/RowCurves.h"

namespace Quillon {
namespace {

constexpr int kFloatsPerPixel = 4;

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

/// The pixel, counted from the first of a vector, that a lane has after the transposition.
int PixelOfLane(int lane) {
  constexpr int kRegisters = kLanes / kFloatsPerPixel;
  return lane % kFloatsPerPixel * kRegisters + lane / kFloatsPerPixel;
}

void LoadPixels(const float* from, Lanes* channels) {
  for (int i = 0; i < kFloatsPerPixel; ++i) channels[i] = Load<Lanes>(from + i * kLanes);
  Transpose(channels);
}

[[maybe_unused]] void StorePixels(float* to, Lanes* channels) {
  Transpose(channels);
  for (int i = 0; i < kFloatsPerPixel; ++i) Store(to + i * kLanes, channels[i]);
}

struct NoStep {
  explicit NoStep(const RowCurves& /*curves*/) {}
  void operator()(Lanes* /*pixel*/) const {}
};

/// The `MapPixel` of a gamut compression. It has the parameters by itself: what lies beside pixels
/// in memory would be read anew for each.
template <class Curve>
struct GamutStep {
  explicit GamutStep(const RowCurves& curves) {
    __builtin_memcpy(params, curves.gamutParams, sizeof params);
  }
  void operator()(Lanes* pixel) const { MapPixel(Curve{}, pixel, params); }
  float params[Curve::kFacts.entries.size()];
};

/// The same of a tone curve.
template <class Curve>
struct ToneStep {
  explicit ToneStep(const RowCurves& curves) : controls(curves.controls) {
    __builtin_memcpy(params, curves.toneParams, sizeof params);
  }
  void operator()(Lanes* pixel) const { MapPixel(Curve{}, pixel, params, controls); }
  orvmediatypes::color::ToneMapControls controls;
  float params[Curve::kFacts.entries.size()];
};

/// Calls `map` on blocks of `size` pixels, and `finish` before these leave the memory that they
/// were called with. What is left over at the end goes through a block of its own, filled up with
/// black.
template <int size, class Map, class Finish>
void ForBlocks(float* pixels, std::size_t count, const Map& map, const Finish& finish) {
  for (; count >= size; count -= size, pixels += size * kFloatsPerPixel) map(pixels);
  finish();
  if (count == 0) return;
  alignas(64) float rest[size * kFloatsPerPixel] = {};
  __builtin_memcpy(rest, pixels, count * kFloatsPerPixel * sizeof(float));
  map(rest);
  finish();
  __builtin_memcpy(pixels, rest, count * kFloatsPerPixel * sizeof(float));
}

/// Both steps on a run, one sweep over memory.
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
  ForBlocks<kLanes>(pixels, count, map, [] {});
}

}  // namespace
}  // namespace Quillon
