#pragma once

// Curves that go over a tile of pixels, which stays in the first-level cache, in stages. A chain of
// powers leaves the processor waiting for itself; many logarithms one after the other, and then
// many exponentials, keep it busy. Included like Blocks.h.

#include "cpu/rows/Blocks.h"
#include "curves/math.h"

namespace Quillon {
namespace {

constexpr int kTilePixels = 256;

/// The pixels of a tile, a plane a channel, in the order in which LoadPixels leaves them.
struct Tile {
  alignas(64) float plane[kFloatsPerPixel][kTilePixels];
};

void LoadPlanes(const Tile& tile, int place, Lanes* channels) {
  for (int c = 0; c < 3; ++c) channels[c] = Load<Lanes>(tile.plane[c] + place);
}

void StorePlanes(const Lanes* channels, Tile& tile, int place) {
  for (int c = 0; c < 3; ++c) Store(tile.plane[c] + place, channels[c]);
}

/// How a tone curve goes over tiles. It has `Enter`, for each vector of pixels on its way into the
/// tile, and `Finish` for the tile; a scratch record of its own goes with both, and `Flush` is for
/// what was put off beyond the tile.
template <class Curve>
class TileForm;

/// Both steps on a run in tiles.
template <class Gamut, class Tone>
void MapTiles(const RowCurves& curves, float* pixels, std::size_t count) {
  const Gamut gamut(curves);
  const Tone tone(curves);
  typename Tone::Scratch scratch;
  const auto map = [&](float* block) {
    Tile tile;
    for (int i = 0; i < kTilePixels; i += kLanes) {
      Lanes channels[kFloatsPerPixel];
      LoadPixels(block + i * kFloatsPerPixel, channels);
      gamut(channels);
      tone.Enter(channels, i, scratch);
      for (int c = 0; c < kFloatsPerPixel; ++c) Store(tile.plane[c] + i, channels[c]);
    }
    tone.Finish(tile, block, scratch);
    for (int i = 0; i < kTilePixels; i += kLanes) {
      Lanes channels[kFloatsPerPixel];
      for (int c = 0; c < kFloatsPerPixel; ++c) channels[c] = Load<Lanes>(tile.plane[c] + i);
      StorePixels(block + i * kFloatsPerPixel, channels);
    }
  };
  ForBlocks<kTilePixels>(pixels, count, map, [&] { tone.Flush(scratch); });
}

/// Room for the logarithms of as many floats.
template <int size>
struct Logs {
  WideLanes log[size / kPowerLanes];
};

template <int size>
void TakeLogs(const float* values, int count, Logs<size>& logs) {
  for (int i = 0; i < count; i += kPowerLanes) {
    logs.log[i / kPowerLanes] = Log2OfNormal(Widen(Load<PowerLanes>(values + i)));
  }
}

/// Powers of `count` floats in place, with exponents above 0 and up to 6; a multiple of kLanes, at
/// most `size`.
template <int size>
void TakePowers(float* values, int count, float exponent) {
  Logs<size> logs;
  alignas(64) float exponentials[size];
  TakeLogs(values, count, logs);
  for (int i = 0; i < count; i += kPowerLanes) {
    const WideLanes product = static_cast<double>(exponent) * logs.log[i / kPowerLanes];
    Store(exponentials + i, Narrow(Exp2OfModerate(product), PowerLanes{}));
  }
  for (int i = 0; i < count; i += kLanes) {
    const auto x = Load<Lanes>(values + i);
    if (AllOf(HasOrdinaryPower(x))) {
      Store(values + i, OrdinaryPower(x, Load<Lanes>(exponentials + i)));
    } else {
      for (int half = i; half < i + kLanes; half += kPowerLanes) {
        Store(values + half, Power(Load<PowerLanes>(values + half), exponent));
      }
    }
  }
}

}  // namespace
}  // namespace Quillon
