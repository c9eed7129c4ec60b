#pragma once

// The run of an instruction set. Most pixels of most pictures need no look: those that do are
// gathered first, so that vectors are full of them. Included like cpu/rows/Lanes.h.

#include "cpu/rows/Lanes.h"
#include "curves/GamutFit.h"

namespace Quillon::Mapper {
namespace {

constexpr int kFloatsPerPixel = 4;
constexpr std::size_t kFitTile = 256;

/// Pixels of a run that need a look, by their place in a tile.
struct Gathered {
  int count = 0;
  int place[kFitTile + kLanes];
};

void GatherBeyond(const GamutFitParams& params, const float* pixels, std::size_t count,
                  Gathered& beyond) {
  beyond.count = 0;
  for (std::size_t i = 0; i < count; ++i) {
    beyond.place[beyond.count] = static_cast<int>(i);
    beyond.count += IsSurelyFitting(pixels + i * kFloatsPerPixel, params) ? 0 : 1;
  }
}

/// Up to a vector of gathered pixels; lanes without one take the first's.
void FitVector(const GamutFitParams& params, const float* table, float* pixels, const int* places,
               int count) {
  alignas(64) float planes[3][kLanes];
  for (int lane = 0; lane < kLanes; ++lane) {
    const float* pixel = pixels + places[lane < count ? lane : 0] * kFloatsPerPixel;
    for (int c = 0; c < 3; ++c) planes[c][lane] = pixel[c];
  }
  Lanes channels[3];
  for (int c = 0; c < 3; ++c) channels[c] = Load<Lanes>(planes[c]);
  FitToGamut(channels, table, params);
  for (int c = 0; c < 3; ++c) Store(planes[c], channels[c]);
  for (int lane = 0; lane < count; ++lane) {
    float* pixel = pixels + places[lane] * kFloatsPerPixel;
    for (int c = 0; c < 3; ++c) pixel[c] = planes[c][lane];
  }
}

void FitRun(const GamutFitParams& params, const float* table, float* pixels, std::size_t count) {
  Gathered beyond;
  while (count > 0) {
    const std::size_t size = count < kFitTile ? count : kFitTile;
    GatherBeyond(params, pixels, size, beyond);
    for (int i = 0; i < beyond.count; i += kLanes) {
      const int left = beyond.count - i;
      FitVector(params, table, pixels, beyond.place + i, left < kLanes ? left : kLanes);
    }
    pixels += size * kFloatsPerPixel;
    count -= size;
  }
}

}  // namespace
}  // namespace Quillon::Mapper
