#pragma once

// Curves that go in stages over a tile of pixels which stays in the first-level cache: chains of
// powers, whose steps each fill the processor better alone, and look-ups, which are scalar.
// Included like MapRun.h.

#include "cpu/rows/MapRun.h"

namespace Quillon {
namespace {

constexpr int kTilePixels = 256;

/// The pixels of a tile, a plane a channel, in the order in which LoadPixels leaves them.
struct Tile {
  alignas(64) float channel[3][kTilePixels];
};

/// Gamut compression and the curve's own first step, into planes.
template <class Gamut, class First>
void LoadTile(const float* pixels, const Gamut& gamut, const First& first, Tile& tile) {
  for (int i = 0; i < kTilePixels; i += kLanes) {
    Lanes channels[kFloatsPerPixel];
    LoadPixels(pixels + i * kFloatsPerPixel, channels);
    gamut(channels);
    first(channels);
    for (int c = 0; c < 3; ++c) StoreLanes(tile.channel[c] + i, channels[c]);
  }
}

/// Back into pixels, whose fourth float stays.
void StoreTile(const Tile& tile, float* pixels) {
  for (int i = 0; i < kTilePixels; i += kLanes) {
    Lanes channels[kFloatsPerPixel];
    LoadPixels(pixels + i * kFloatsPerPixel, channels);
    for (int c = 0; c < 3; ++c) channels[c] = LoadLanes(tile.channel[c] + i);
    StorePixels(pixels + i * kFloatsPerPixel, channels);
  }
}

template <class Tone>
void MapTile(const Tone& tone, const auto& gamut, float* pixels) {
  Tile tile;
  LoadTile(pixels, gamut, tone.first, tile);
  tone(tile);
  StoreTile(tile, pixels);
}

/// Both steps on a run in tiles. What is left over at the end goes through a tile of its own,
/// filled up with black.
template <class Gamut, class Tone>
void MapTiles(const RowCurves& curves, float* pixels, std::size_t count) {
  const Gamut gamut(curves);
  const Tone tone(curves);
  for (; count >= kTilePixels; count -= kTilePixels, pixels += kTilePixels * kFloatsPerPixel) {
    MapTile(tone, gamut, pixels);
  }
  if (count == 0) return;
  alignas(64) float rest[kTilePixels * kFloatsPerPixel] = {};
  __builtin_memcpy(rest, pixels, count * kFloatsPerPixel * sizeof(float));
  MapTile(tone, gamut, rest);
  __builtin_memcpy(pixels, rest, count * kFloatsPerPixel * sizeof(float));
}

// --- BT.2446 method A -------------------------------------------------------------------------

struct Bt2446AFirst {
  void operator()(Lanes* pixel) const {
    for (int c = 0; c < 3; ++c) pixel[c] = pixel[c] * scale;
  }
  float scale;
};

struct Bt2446ATone {
  explicit Bt2446ATone(const RowCurves& curves)
      : first{curves.toneParams[2] * curves.gain},
        rhoHdr(curves.toneParams[0]),
        rhoSdr(curves.toneParams[1]),
        outputScale(curves.toneParams[3]),
        colorPreservation(curves.colorPreservation) {}

  void operator()(Tile& tile) const {
    Tile results;
    for (int c = 0; c < 3; ++c) MapChannel(tile.channel[c], results.channel[c]);
    for (int i = 0; i < kTilePixels; i += kLanes) {
      Lanes pixel[3];
      Lanes y[3];
      for (int c = 0; c < 3; ++c) {
        pixel[c] = LoadLanes(tile.channel[c] + i);
        y[c] = LoadLanes(results.channel[c] + i);
      }
      BlendBt2446A(pixel, y, outputScale, colorPreservation);
      for (int c = 0; c < 3; ++c) StoreLanes(tile.channel[c] + i, pixel[c]);
    }
  }

  /// Bt2446AChannel in stages of one power's half each.
  void MapChannel(const float* values, float* results) const {
    WideLanes logs[kTilePixels / kLanes];
    for (int i = 0; i < kTilePixels; i += kLanes) {
      const Lanes encodable = Bt2446AEncodable(LoadLanes(values + i));
      logs[i / kLanes] = Log2OfNormal(Widen(encodable));
    }
    for (int i = 0; i < kTilePixels; i += kLanes) {
      const Lanes encodable = Bt2446AEncodable(LoadLanes(values + i));
      StoreLanes(results + i, PowerFromLog(encodable, QUILLON_BT2446A_ENCODING, logs[i / kLanes]));
    }
    for (int i = 0; i < kTilePixels; i += kLanes) {
      StoreLanes(results + i, Bt2446AEncoded(LoadLanes(results + i), rhoHdr));
    }
    for (int i = 0; i < kTilePixels; i += kLanes) {
      StoreLanes(results + i, Bt2446ADecodable(LoadLanes(results + i), rhoSdr));
    }
    for (int i = 0; i < kTilePixels; i += kLanes) {
      logs[i / kLanes] = Log2OfNormal(Widen(LoadLanes(results + i)));
    }
    for (int i = 0; i < kTilePixels; i += kLanes) {
      StoreLanes(results + i,
                 PowerFromLog(LoadLanes(results + i), QUILLON_BT2446A_DECODING, logs[i / kLanes]));
    }
  }

  Bt2446AFirst first;
  float rhoHdr;
  float rhoSdr;
  float outputScale;
  float colorPreservation;
};

// --- BT.2390 ----------------------------------------------------------------------------------

/// Highlight desaturation, then nits as indices of the tables by nits. Pixels beyond the tables
/// are noted and mapped one by one.
struct Bt2390Tone {
  explicit Bt2390Tone(const RowCurves& rowCurves)
      : curves(rowCurves), first(rowCurves), white(rowCurves.toneParams[4]) {}

 protected:
  struct Indices {
    alignas(64) int channel[3][kTilePixels];
  };

  /// A place of the tile that lies beyond the tables.
  struct Beyond {
    int count = 0;
    int place[kTilePixels];
  };

  void FindIndices(const Tile& tile, Indices& indices, Beyond& beyond) const {
    for (int i = 0; i < kTilePixels; i += kLanes) {
      Lanes nits[3];
      for (int c = 0; c < 3; ++c) {
        nits[c] = white * LoadLanes(tile.channel[c] + i);
        StoreInts(indices.channel[c] + i, IndexOf(nits[c], Bt2390Tables::kNits));
      }
      const LaneInts isBeyond = (LargestOfThree(nits[0], nits[1], nits[2]) > 10000.0F) |
                                (SmallestOfThree(nits[0], nits[1], nits[2]) < 0.0F);
      if (!AnyOf(isBeyond)) continue;
      for (int lane = 0; lane < kLanes; ++lane) {
        if (isBeyond[lane] != 0) beyond.place[beyond.count++] = i + lane;
      }
    }
  }

  /// Rounded down and clamped to a table; 0 for what is not a number.
  static LaneInts IndexOf(Lanes place, int size) {
    const auto last = static_cast<float>(size - 1);
    const Lanes atMost = place > last ? Uniform(last, place) : place;
    const Lanes clamped = place >= 1.0F ? atMost : Uniform(0.0F, place);
    return __builtin_convertvector(clamped, LaneInts);
  }

  static void StoreInts(int* to, LaneInts ints) { __builtin_memcpy(to, &ints, sizeof ints); }

  /// Keeps what lies beyond the tables from a tile that is about to be written.
  void MapBeyond(const Beyond& beyond, const Tile& before, Tile& after) const {
    for (int n = 0; n < beyond.count; ++n) {
      const int place = beyond.place[n];
      float pixel[3];
      for (int c = 0; c < 3; ++c) pixel[c] = before.channel[c][place];
      curves.mapBeyondTables(curves, pixel);
      for (int c = 0; c < 3; ++c) after.channel[c][place] = pixel[c];
    }
  }

 public:
  const RowCurves& curves;
  Bt2390HighlightStep first;
  float white;
};

struct Bt2390ByChannelTone : Bt2390Tone {
  using Bt2390Tone::Bt2390Tone;
  void operator()(Tile& tile) const {
    Indices indices;
    Beyond beyond;
    FindIndices(tile, indices, beyond);
    Tile mapped;
    for (int c = 0; c < 3; ++c) {
      for (int i = 0; i < kTilePixels; ++i) {
        mapped.channel[c][i] = curves.tables.mapped[indices.channel[c][i]];
      }
    }
    MapBeyond(beyond, tile, mapped);
    tile = mapped;
  }
};

struct Bt2390MaxRGBTone : Bt2390Tone {
  using Bt2390Tone::Bt2390Tone;
  void operator()(Tile& tile) const {
    Indices indices;
    Beyond beyond;
    FindIndices(tile, indices, beyond);
    Tile mapped;
    LookUp(curves.tables.encoded, indices, mapped);
    ScaleByRatio(mapped, indices);
    LookUp(curves.tables.decoded, indices, mapped);
    MapBeyond(beyond, tile, mapped);
    tile = mapped;
  }

 private:
  static void LookUp(const float* table, const Indices& indices, Tile& values) {
    for (int c = 0; c < 3; ++c) {
      for (int i = 0; i < kTilePixels; ++i) values.channel[c][i] = table[indices.channel[c][i]];
    }
  }

  /// From PQ code values to indices of the decoding table.
  void ScaleByRatio(const Tile& encoded, Indices& indices) const {
    constexpr float kDecodeStep = 1.0F / 8191.0F;
    alignas(64) int largest[kTilePixels];
    alignas(64) float ratio[kTilePixels];
    for (int i = 0; i < kTilePixels; i += kLanes) {
      Lanes pq[3];
      LaneInts index[3];
      for (int c = 0; c < 3; ++c) {
        pq[c] = LoadLanes(encoded.channel[c] + i);
        __builtin_memcpy(&index[c], indices.channel[c] + i, sizeof index[c]);
      }
      const Lanes top = LargestOfThree(pq[0], pq[1], pq[2]);
      const LaneInts ofTop = top == pq[0] ? index[0] : (top == pq[1] ? index[1] : index[2]);
      StoreInts(largest + i, ofTop);
    }
    for (int i = 0; i < kTilePixels; ++i) ratio[i] = curves.tables.ratio[largest[i]];
    for (int i = 0; i < kTilePixels; i += kLanes) {
      const Lanes scale = LoadLanes(ratio + i);
      for (int c = 0; c < 3; ++c) {
        const Lanes place = scale * LoadLanes(encoded.channel[c] + i) / kDecodeStep;
        StoreInts(indices.channel[c] + i, IndexOf(place, Bt2390Tables::kCodes));
      }
    }
  }
};

}  // namespace
}  // namespace Quillon
