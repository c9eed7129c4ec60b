#pragma once

// BT.2390 through the tables of RowCurves.h. Look-ups are scalar: gathers are slower. Included like
// Blocks.h.

#include "cpu/rows/HighlightTiles.h"
#include "curves/St2084.h"

namespace Quillon {
namespace {

constexpr float kDecodeStep = 1.0F / 8191.0F;

/// Rounded down and clamped to a table; 0 for what is not a number.
template <class Real>
typename LaneTypes<Real>::Mask TableIndex(Real place, int size) {
  const auto last = static_cast<float>(size - 1);
  const Real atMost = place > last ? Uniform(last, place) : place;
  const Real clamped = place >= 1.0F ? atMost : Uniform(0.0F, place);
  return __builtin_convertvector(clamped, typename LaneTypes<Real>::Mask);
}

using TileIndices = int[3][kTilePixels];

void LookUp(const float* table, const TileIndices& indices, Tile& values) {
  for (int c = 0; c < 3; ++c) {
    for (int i = 0; i < kTilePixels; ++i) values.plane[c][i] = table[indices[c][i]];
  }
}

/// Pixels beyond the tables: where they lie in a tile, then where they lie in memory and what light
/// they have. They are put off until there are many.
struct BeyondTables {
  static constexpr int kEnough = 256;
  static constexpr int kCapacity = kEnough + kTilePixels;

  int placeCount = 0;
  int place[kTilePixels + 4];
  int count = 0;
  float* pixel[kCapacity];
  alignas(64) float channel[3][kCapacity];

  /// Notes the set lanes of a mask. Without a branch for each: they come as they like.
  void NoteLanes(int mask, int first) {
    using Four __attribute__((vector_size(4 * sizeof(int)))) = int;
    static constexpr Four kSetBits[16] = {
        {},  {0},    {1},    {0, 1},    {2},    {0, 2},    {1, 2},    {0, 1, 2},
        {3}, {0, 3}, {1, 3}, {0, 1, 3}, {2, 3}, {0, 2, 3}, {1, 2, 3}, {0, 1, 2, 3}};
    int noted = placeCount;
    for (int lane = 0; lane < kLanes; lane += 4) {
      const int four = (mask >> lane) & 15;
      Store(place + noted, kSetBits[four] + (first + lane));
      noted += static_cast<int>((0x4332322132212110ULL >> (4 * four)) & 15);
    }
    placeCount = noted;
  }

  /// Takes the noted pixels over from a tile.
  void TakePlaces(const Tile& tile, float* block) {
    for (int i = 0; i < placeCount; ++i) {
      const int lane = place[i] % kLanes;
      const int inBlock = place[i] - lane + PixelOfLane(lane);
      pixel[count + i] = block + inBlock * kFloatsPerPixel;
      for (int c = 0; c < 3; ++c) channel[c][count + i] = tile.plane[c][place[i]];
    }
    count += placeCount;
    placeCount = 0;
  }
};

/// ST 2084 of nits, 0 at and below 0; for magnitudes up to 1e30. At most three
/// planes.
void EncodeNits(const float* nits, int count, float* encoded) {
  Logs<3 * BeyondTables::kCapacity> logs;
  for (int i = 0; i < count; i += kPowerLanes) {
    const auto x = Load<PowerLanes>(nits + i);
    const PowerLanes positive = x > 0.0F ? x : Uniform(1.0F, x);
    logs.log[i / kPowerLanes] = Log2OfNormal(Widen(positive) / 10000.0);
  }
  for (int i = 0; i < count; i += kPowerLanes) {
    WideLanes& log = logs.log[i / kPowerLanes];
    log = St2084Ratio(Exp2OfModerate(QUILLON_ST2084_M1 * log));
  }
  for (int i = 0; i < count; i += kPowerLanes) {
    WideLanes& log = logs.log[i / kPowerLanes];
    log = Log2OfNormal(log);
  }
  for (int i = 0; i < count; i += kPowerLanes) {
    const auto x = Load<PowerLanes>(nits + i);
    const WideLanes code = Exp2OfModerate(QUILLON_ST2084_M2 * logs.log[i / kPowerLanes]);
    Store(encoded + i, x > 0.0F ? Narrow(code, x) : Uniform(0.0F, x));
  }
}

/// Highlight desaturation, then nits as indices. Pixels beyond the tables are noted and mapped on
/// their own.
template <class Form>
class Bt2390Stages {
 public:
  struct Scratch {
    Highlights highlights;
    alignas(64) TileIndices indices;
    BeyondTables beyond;
  };

  explicit Bt2390Stages(const RowCurves& curves)
      : curves_(curves),
        highlight_(curves, Bt2390Params::kKneeStartLight, Bt2390Params{}),
        white_(curves.toneParams[Bt2390Params::kReferenceWhite]) {}

  void Enter(Lanes* channels, int place, Scratch& scratch) const {
    if (!highlight_.Enter(channels, place, scratch.highlights)) {
      NoteNits(channels, place, scratch);
    }
  }

  void Flush(Scratch& scratch) const {
    BeyondTables& beyond = scratch.beyond;
    if (curves_.encodesAsSt2084) {
      MapTogether(beyond);
    } else {
      MapThroughHost(beyond, 0, beyond.count);
    }
    beyond.count = 0;
  }

 protected:
  /// Leaves the tile with the light that the tables are about to map.
  void FinishHighlights(Tile& tile, float* block, Scratch& scratch) const {
    highlight_.Finish(tile, scratch.highlights, [&](const Lanes* channels, int i) {
      StorePlanes(channels, tile, scratch.highlights.place[i]);
      NoteNits(channels, scratch.highlights.place[i], scratch);
    });
    scratch.highlights.count = 0;
    // The last tile's pixels are in memory by now.
    if (scratch.beyond.count >= BeyondTables::kEnough) Flush(scratch);
    scratch.beyond.TakePlaces(tile, block);
  }

  const RowCurves& curves_;

 private:
  void NoteNits(const Lanes* channels, int place, Scratch& scratch) const {
    Lanes nits[3];
    for (int c = 0; c < 3; ++c) {
      nits[c] = white_ * channels[c];
      Store(scratch.indices[c] + place, TableIndex(nits[c], Bt2390Lookups::kNits));
    }
    const auto isBeyond = (LargestOfThree(nits[0], nits[1], nits[2]) > 10000.0F) |
                          (SmallestOfThree(nits[0], nits[1], nits[2]) < 0.0F);
    if (AnyOf(isBeyond)) scratch.beyond.NoteLanes(MaskBits(isBeyond), place);
  }

  void MapThroughHost(const BeyondTables& beyond, int first, int last) const {
    for (int i = first; i < last; ++i) {
      for (int c = 0; c < 3; ++c) beyond.pixel[i][c] = beyond.channel[c][i];
      curves_.mapBeyondTables(curves_, beyond.pixel[i]);
    }
  }

  void MapTogether(BeyondTables& beyond) const {
    const int padded = (beyond.count + kPowerLanes - 1) / kPowerLanes * kPowerLanes;
    alignas(64) float nits[3 * BeyondTables::kCapacity];
    for (int c = 0; c < 3; ++c) {
      for (int i = beyond.count; i < padded; ++i) beyond.channel[c][i] = 0.0F;
      for (int i = 0; i < padded; i += kPowerLanes) {
        Store(nits + c * padded + i, white_ * Load<PowerLanes>(beyond.channel[c] + i));
      }
    }
    alignas(64) float encoded[3 * BeyondTables::kCapacity];
    EncodeNits(nits, 3 * padded, encoded);
    for (int i = 0; i < padded; i += kPowerLanes) {
      MapEncoded(beyond, nits + i, encoded + i, padded, i);
    }
  }

  /// A vector of pixels from code values to memory; through the host after all if one of them is
  /// not in the range of EncodeNits or leaves that of the decoding table. Planes lie `stride`
  /// apart.
  void MapEncoded(const BeyondTables& beyond, const float* nits, const float* encoded, int stride,
                  int first) const {
    const int last = first + kPowerLanes < beyond.count ? first + kPowerLanes : beyond.count;
    PowerLanes pq[3];
    for (int c = 0; c < 3; ++c) pq[c] = Load<PowerLanes>(encoded + c * stride);
    Form::ApplyEetf(pq, curves_.eetf);
    bool isWithin = true;
    int index[3][kPowerLanes];
    for (int c = 0; c < 3; ++c) {
      const auto light = Load<PowerLanes>(nits + c * stride);
      isWithin = isWithin &&
                 AllOf((light <= 1e30F) & (light >= -1e30F) & (pq[c] >= 0.0F) & (pq[c] <= 1.0F));
      Store(index[c], TableIndex(pq[c] / kDecodeStep, Bt2390Lookups::kCodes));
    }
    if (!isWithin) return MapThroughHost(beyond, first, last);
    for (int i = first; i < last; ++i) {
      for (int c = 0; c < 3; ++c) {
        beyond.pixel[i][c] = curves_.tables.decoded[index[c][i - first]];
      }
    }
  }

  HighlightStage highlight_;
  float white_;
};

struct ByChannel {
  static void ApplyEetf(PowerLanes* pq, const EetfParams& params) { EetfByChannel(pq, params); }
};

struct MaxRGB {
  static void ApplyEetf(PowerLanes* pq, const EetfParams& params) { EetfMaxRGB(pq, params); }
};

template <>
class TileForm<Bt2390RGBByChannelToneMap> : public Bt2390Stages<ByChannel> {
 public:
  using Bt2390Stages::Bt2390Stages;

  void Finish(Tile& tile, float* block, Scratch& scratch) const {
    FinishHighlights(tile, block, scratch);
    LookUp(curves_.tables.mapped, scratch.indices, tile);
  }
};

template <>
class TileForm<Bt2390MaxRGBToneMap> : public Bt2390Stages<MaxRGB> {
 public:
  using Bt2390Stages::Bt2390Stages;

  void Finish(Tile& tile, float* block, Scratch& scratch) const {
    FinishHighlights(tile, block, scratch);
    LookUp(curves_.tables.encoded, scratch.indices, tile);
    ScaleByRatio(tile, scratch.indices);
    LookUp(curves_.tables.decoded, scratch.indices, tile);
  }

 private:
  /// From PQ code values, and the indices that they have by nits, to indices of the decoding table.
  void ScaleByRatio(const Tile& encoded, TileIndices& indices) const {
    alignas(64) int ofLargest[kTilePixels];
    alignas(64) float ratios[kTilePixels];
    for (int i = 0; i < kTilePixels; i += kLanes) {
      Lanes pq[3];
      LoadPlanes(encoded, i, pq);
      const Lanes largest = LargestOfThree(pq[0], pq[1], pq[2]);
      const auto second = Load<LaneInts>(indices[1] + i);
      const auto third = Load<LaneInts>(indices[2] + i);
      const auto others = largest == pq[1] ? second : third;
      Store(ofLargest + i, largest == pq[0] ? Load<LaneInts>(indices[0] + i) : others);
    }
    for (int i = 0; i < kTilePixels; ++i) ratios[i] = curves_.tables.ratio[ofLargest[i]];
    for (int i = 0; i < kTilePixels; i += kLanes) {
      const auto ratio = Load<Lanes>(ratios + i);
      for (int c = 0; c < 3; ++c) {
        const Lanes place = ratio * Load<Lanes>(encoded.plane[c] + i) / kDecodeStep;
        Store(indices[c] + i, TableIndex(place, Bt2390Lookups::kCodes));
      }
    }
  }
};

}  // namespace
}  // namespace Quillon
