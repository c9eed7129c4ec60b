#pragma once

// BT.2446 method A. Included like Blocks.h.

#include "cpu/rows/Tiles.h"
#include "curves/Bt2446A.h"

namespace Quillon {
namespace {

template <>
class TileForm<Bt2446AToneMap> {
 public:
  struct Scratch {};

  explicit TileForm(const RowCurves& curves)
      : scale_(curves.toneParams[Bt2446AParams::kInputScale] * curves.controls.peakGain),
        rhoHdr_(curves.toneParams[Bt2446AParams::kRhoHdr]),
        rhoSdr_(curves.toneParams[Bt2446AParams::kRhoSdr]),
        outputScale_(curves.toneParams[Bt2446AParams::kOutputScale]),
        colorPreservation_(curves.controls.colorPreservation) {}

  void Enter(Lanes* channels, int /*place*/, Scratch& /*scratch*/) const {
    for (int c = 0; c < 3; ++c) channels[c] = channels[c] * scale_;
  }

  void Finish(Tile& tile, float* /*block*/, Scratch& /*scratch*/) const {
    alignas(64) float results[3][kTilePixels];
    for (int c = 0; c < 3; ++c) MapPlane(tile.plane[c], results[c]);
    for (int i = 0; i < kTilePixels; i += kLanes) {
      Lanes channels[3];
      LoadPlanes(tile, i, channels);
      const Lanes y[3] = {Load<Lanes>(results[0] + i), Load<Lanes>(results[1] + i),
                          Load<Lanes>(results[2] + i)};
      BlendBt2446A(channels, y, outputScale_, colorPreservation_);
      StorePlanes(channels, tile, i);
    }
  }

  void Flush(Scratch& /*scratch*/) const {}

 private:
  /// Bt2446AChannel in stages.
  void MapPlane(const float* values, float* results) const {
    for (int i = 0; i < kTilePixels; i += kLanes) {
      Store(results + i, Bt2446AEncodable(Load<Lanes>(values + i)));
    }
    TakePowers<kTilePixels>(results, kTilePixels, QUILLON_BT2446A_ENCODING);
    MapEncoded(results);
    for (int i = 0; i < kTilePixels; i += kPowerLanes) {
      Store(results + i, Bt2446ADecodable(Load<PowerLanes>(results + i), rhoSdr_));
    }
    TakePowers<kTilePixels>(results, kTilePixels, QUILLON_BT2446A_DECODING);
  }

  void MapEncoded(float* values) const {
    alignas(64) float loggable[kTilePixels];
    for (int i = 0; i < kTilePixels; i += kLanes) {
      Store(loggable + i, Bt2446ALoggable(Load<Lanes>(values + i), rhoHdr_));
    }
    Logs<kTilePixels> logs;
    TakeLogs(loggable, kTilePixels, logs);
    for (int i = 0; i < kTilePixels; i += kPowerLanes) {
      const auto x = Load<PowerLanes>(loggable + i);
      Store(loggable + i, LogarithmFromLog(x, logs.log[i / kPowerLanes]));
    }
    for (int i = 0; i < kTilePixels; i += kLanes) {
      const auto encoded = Load<Lanes>(values + i);
      Store(values + i, Bt2446ACurve(encoded, Load<Lanes>(loggable + i), rhoHdr_));
    }
  }

  float scale_;
  float rhoHdr_;
  float rhoSdr_;
  float outputScale_;
  float colorPreservation_;
};

}  // namespace
}  // namespace Quillon
