#pragma once

// Highlight desaturation, alone and before the CAR curve. Included like Blocks.h.

#include "cpu/rows/Tiles.h"
#include "curves/Car.h"
#include "curves/HighlightDesaturation.h"

namespace Quillon {
namespace {

/// Vectors of a tile that have highlights, and for each a float a pixel.
struct Highlights {
  int count = 0;
  int place[kTilePixels / kLanes];
  alignas(64) float value[kTilePixels];

  float* ValueOf(int index) { return value + index * kLanes; }
};

/// Highlight desaturation, whose threshold and weights stand at different places of the curves'
/// parameters: weights where `Params` has them.
class HighlightStage {
 public:
  template <class Params>
  HighlightStage(const RowCurves& curves, std::size_t threshold, Params /*names*/)
      : gain_(curves.controls.peakGain),
        threshold_(curves.toneParams[threshold]),
        peak_(curves.controls.peak),
        colorPreservation_(curves.controls.colorPreservation),
        red_(curves.toneParams[Params::kWeightRed]),
        green_(curves.toneParams[Params::kWeightGreen]),
        blue_(curves.toneParams[Params::kWeightBlue]) {}

  /// The gain. True when the pixels have highlights, which are noted and left to `Finish`.
  bool Enter(Lanes* channels, int place, Highlights& highlights) const {
    for (int c = 0; c < 3; ++c) channels[c] = channels[c] * gain_;
    const Lanes largest = LargestOfThree(channels[0], channels[1], channels[2]);
    if (!AnyOf(largest > threshold_)) return false;
    highlights.place[highlights.count] = place;
    Store(highlights.ValueOf(highlights.count), HighlightPlace(largest, threshold_, peak_));
    ++highlights.count;
    return true;
  }

  /// Desaturates what was noted, and hands it on: `next(channels, index)`. What was noted stays,
  /// for the caller to clear.
  template <class Next>
  void Finish(const Tile& tile, Highlights& highlights, const Next& next) const {
    TakePowers<kTilePixels>(highlights.value, highlights.count * kLanes,
                            QUILLON_HIGHLIGHT_EXPONENT);
    for (int i = 0; i < highlights.count; ++i) {
      Lanes channels[3];
      LoadPlanes(tile, highlights.place[i], channels);
      const Lanes largest = LargestOfThree(channels[0], channels[1], channels[2]);
      const auto strength = Load<Lanes>(highlights.ValueOf(i));
      MoveToLuminance(channels, largest, strength, threshold_, colorPreservation_, red_, green_,
                      blue_);
      next(channels, i);
    }
  }

 private:
  float gain_;
  float threshold_;
  float peak_;
  float colorPreservation_;
  float red_;
  float green_;
  float blue_;
};

/// What is left of BT.2390 when its knee lies at or above the source's peak.
class HighlightTone {
 public:
  using Scratch = Highlights;

  explicit HighlightTone(const RowCurves& curves)
      : highlight_(curves, Bt2390Params::kKneeStartLight, Bt2390Params{}) {}

  void Enter(Lanes* channels, int place, Scratch& scratch) const {
    highlight_.Enter(channels, place, scratch);
  }
  void Finish(Tile& tile, float* /*block*/, Scratch& scratch) const {
    highlight_.Finish(tile, scratch, [&](const Lanes* channels, int i) {
      StorePlanes(channels, tile, scratch.place[i]);
    });
    scratch.count = 0;
  }
  void Flush(Scratch& /*scratch*/) const {}

 private:
  HighlightStage highlight_;
};

/// The CAR curve, whose knee is the highlights' threshold: what has no highlight lies below it.
template <>
class TileForm<CARToneMap> {
 public:
  using Scratch = Highlights;

  explicit TileForm(const RowCurves& curves)
      : highlight_(curves, CarParams::kKnee, CarParams{}),
        knee_(curves.toneParams[CarParams::kKnee]),
        a_(curves.toneParams[CarParams::kA]),
        b_(curves.toneParams[CarParams::kB]),
        destinationPeak_(curves.toneParams[CarParams::kDestinationPeak]) {}

  void Enter(Lanes* channels, int place, Scratch& scratch) const {
    highlight_.Enter(channels, place, scratch);
  }
  void Finish(Tile& tile, float* /*block*/, Scratch& scratch) const {
    highlight_.Finish(tile, scratch, [&](const Lanes* channels, int i) {
      StorePlanes(channels, tile, scratch.place[i]);
      const Lanes largest = LargestOfThree(channels[0], channels[1], channels[2]);
      Store(scratch.ValueOf(i), CarExcess(largest, knee_));
    });
    TakePowers<kTilePixels>(scratch.value, scratch.count * kLanes, QUILLON_CAR_EXPONENT);
    for (int i = 0; i < scratch.count; ++i) {
      Lanes channels[3];
      LoadPlanes(tile, scratch.place[i], channels);
      const Lanes largest = LargestOfThree(channels[0], channels[1], channels[2]);
      ScaleByCar(channels, largest, Load<Lanes>(scratch.ValueOf(i)), knee_, a_, b_,
                 destinationPeak_);
      StorePlanes(channels, tile, scratch.place[i]);
    }
    scratch.count = 0;
  }
  void Flush(Scratch& /*scratch*/) const {}

 private:
  HighlightStage highlight_;
  float knee_;
  float a_;
  float b_;
  float destinationPeak_;
};

}  // namespace
}  // namespace Quillon
