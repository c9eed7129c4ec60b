#pragma once

// The run of an instruction set. Most pixels of most pictures need no look: those that do are
// gathered first, so that vectors are full of them. Included like cpu/rows/Lanes.h.

#include "cpu/rows/Blocks.h"
#include "curves/GamutFit.h"

namespace Quillon::Mapper {
namespace {

constexpr int kFitTile = 1024;

/// Pixels of a run that need a look, by their place in a tile.
struct Gathered {
  int count = 0;
  int place[kFitTile + kLanes];
};

/// Looks at a vector of pixels, which may be more than `count`.
void GatherBeyond(const GamutFitParams& params, const float* pixels, int first, int count,
                  Gathered& beyond) {
  Lanes channels[kFloatsPerPixel];
  LoadPixels(pixels + first * kFloatsPerPixel, channels);
  const LaneInts fitting = IsSurelyFitting(channels, params);
  if (AllOf(fitting)) return;
  for (int lane = 0; lane < kLanes; ++lane) {
    const int place = first + PixelOfLane(lane);
    beyond.place[beyond.count] = place;
    beyond.count += fitting[lane] != 0 || place >= count ? 0 : 1;
  }
}

/// Channels of gathered pixels, a plane a channel.
struct Planes {
  alignas(64) float plane[3][kFitTile];

  void LoadVector(int place, Lanes* channels) const {
    for (int c = 0; c < 3; ++c) channels[c] = Load<Lanes>(plane[c] + place);
  }
  void StoreVector(int place, const Lanes* channels) {
    for (int c = 0; c < 3; ++c) Store(plane[c] + place, channels[c]);
  }
};

/// Each step on all vectors before the next, so that the processor waits for none of them.
void FitTile(const GamutFitParams& params, const float* table, float* pixels, int count) {
  Gathered beyond;
  for (int i = 0; i < count; i += kLanes) GatherBeyond(params, pixels, i, count, beyond);
  if (beyond.count == 0) return;

  Planes planes;
  const Lanes black[3] = {};
  planes.StoreVector((beyond.count - 1) / kLanes * kLanes, black);  // fills up the last vector
  for (int i = 0; i < beyond.count; ++i) {
    const float* pixel = pixels + beyond.place[i] * kFloatsPerPixel;
    for (int c = 0; c < 3; ++c) planes.plane[c][i] = pixel[c];
  }
  Lanes channels[3];
  const auto forVectors = [&](const auto& step) {
    for (int i = 0; i < beyond.count; i += kLanes) {
      planes.LoadVector(i, channels);
      step(i);
      planes.StoreVector(i, channels);
    }
  };
  alignas(64) int inside[kFitTile];
  forVectors([&](int /*place*/) { FitSignals(channels, params); });
  forVectors([&](int place) { Store(inside + place, FitChroma(channels, table, params)); });
  forVectors([&](int /*place*/) { FitLight(channels, params); });
  for (int i = 0; i < beyond.count; ++i) {
    if (inside[i] != 0) continue;
    float* pixel = pixels + beyond.place[i] * kFloatsPerPixel;
    for (int c = 0; c < 3; ++c) pixel[c] = planes.plane[c][i];
  }
}

/// What is left over at the end goes through a tile of its own.
void FitRun(const GamutFitParams& params, const float* table, float* pixels, std::size_t count) {
  for (; count >= kFitTile; count -= kFitTile, pixels += kFitTile * kFloatsPerPixel) {
    FitTile(params, table, pixels, kFitTile);
  }
  if (count == 0) return;
  alignas(64) float rest[kFitTile * kFloatsPerPixel] = {};
  __builtin_memcpy(rest, pixels, count * kFloatsPerPixel * sizeof(float));
  FitTile(params, table, rest, static_cast<int>(count));
  __builtin_memcpy(pixels, rest, count * kFloatsPerPixel * sizeof(float));
}

}  // namespace
}  // namespace Quillon::Mapper
