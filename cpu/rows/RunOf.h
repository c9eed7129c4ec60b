#pragma once

// The run of an instruction set, put together from its curves. Included like Blocks.h.

#include "cpu/rows/Blocks.h"
#include "cpu/rows/Bt2390Tiles.h"
#include "cpu/rows/Bt2446ATiles.h"
#include "cpu/rows/HighlightTiles.h"

namespace Quillon {
namespace {

template <class Gamut>
void MapRunWith(const RowCurves& curves, float* pixels, std::size_t count) {
  switch (curves.tone) {
    case RowTone::None:
      return MapBlocks<Gamut, NoStep>(curves, pixels, count);
    case RowTone::HuePreserving:
      return MapBlocks<Gamut, HuePreservingStep>(curves, pixels, count);
    case RowTone::Car:
      return MapTiles<Gamut, CarTone>(curves, pixels, count);
    case RowTone::Bt2446A:
      return MapTiles<Gamut, Bt2446ATone>(curves, pixels, count);
    case RowTone::HighlightOnly:
      return MapTiles<Gamut, HighlightTone>(curves, pixels, count);
    case RowTone::Bt2390ByChannel:
      return MapTiles<Gamut, Bt2390ByChannelTone>(curves, pixels, count);
    case RowTone::Bt2390MaxRGB:
      return MapTiles<Gamut, Bt2390MaxRGBTone>(curves, pixels, count);
  }
}

void MapRun(const RowCurves& curves, float* pixels, std::size_t count) {
  switch (curves.gamut) {
    case RowGamut::None:
      return MapRunWith<NoStep>(curves, pixels, count);
    case RowGamut::Reinhard:
      return MapRunWith<ReinhardStep>(curves, pixels, count);
    case RowGamut::Desaturation:
      return MapRunWith<DesaturationStep>(curves, pixels, count);
  }
}

}  // namespace
}  // namespace Quillon
