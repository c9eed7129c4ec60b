#pragma once

// The run of an instruction set, put together from its curves. Included like Blocks.h.

#include "cpu/rows/Blocks.h"
#include "cpu/rows/Bt2390Tiles.h"
#include "cpu/rows/Bt2446ATiles.h"
#include "cpu/rows/HighlightTiles.h"

namespace Quillon {
namespace {

template <class Gamut, class Curve>
void MapRunByCurve(const RowCurves& curves, float* pixels, std::size_t count) {
  if constexpr (Curve::kFacts.rowForm == RowForm::Vectors) {
    MapBlocks<Gamut, ToneStep<Curve>>(curves, pixels, count);
  } else {
    MapTiles<Gamut, TileForm<Curve>>(curves, pixels, count);
  }
}

template <class Gamut, class... Curves>
void MapRunWith(CurveList<Curves...> /*tones*/, const RowCurves& curves, float* pixels,
                std::size_t count) {
  if (curves.tone == RowTone::None) return MapBlocks<Gamut, NoStep>(curves, pixels, count);
  if (curves.tone == RowTone::HighlightOnly) {
    return MapTiles<Gamut, HighlightTone>(curves, pixels, count);
  }
  const auto mapIf = [&]<class Curve>(const Curve* /*curve*/) {
    if (curves.tone == kRowToneOf<Curve>) MapRunByCurve<Gamut, Curve>(curves, pixels, count);
  };
  (mapIf(static_cast<const Curves*>(nullptr)), ...);
}

template <class... Curves>
void MapRun(CurveList<Curves...> /*gamuts*/, const RowCurves& curves, float* pixels,
            std::size_t count) {
  if (curves.gamut == RowGamut::None) {
    return MapRunWith<NoStep>(ToneCurves{}, curves, pixels, count);
  }
  const auto mapIf = [&]<class Curve>(const Curve* /*curve*/) {
    if (curves.gamut != kRowGamutOf<Curve>) return;
    MapRunWith<GamutStep<Curve>>(ToneCurves{}, curves, pixels, count);
  };
  (mapIf(static_cast<const Curves*>(nullptr)), ...);
}

void MapRun(const RowCurves& curves, float* pixels, std::size_t count) {
  MapRun(GamutCurves{}, curves, pixels, count);
}

}  // namespace
}  // namespace Quillon
