#include "cpu/rows/RowForms.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>

#include "cpu/rows/RowCurves.h"
#include "tonemap/CarToneCurve.h"
#include "tonemap/HuePreservation.h"
#include "tonemap/Itu2390.h"
#include "tonemap/Itu2446A.h"

namespace Quillon {

namespace {

MapRunFunction RunOf(InstructionSet set) {
#if defined(__x86_64__)
  switch (set) {
    case InstructionSet::Avx512:
      return MapRunAvx512;
    case InstructionSet::Avx2:
      return MapRunAvx2;
    case InstructionSet::Baseline:
      return MapRunBaseline;
  }
#else
  static_cast<void>(set);
#endif
  return MapRunBaseline;
}

bool BindGamut(const RowSteps& steps, RowCurves& curves) {
  const GamutCompressionPixelFunction& function = steps.compressGamut;
  curves.gamutParams = steps.gamutParams.data();
  if (!function) {
    curves.gamut = RowGamut::None;
  } else if (function.target<GamutCompressionReinhard>() != nullptr) {
    curves.gamut = RowGamut::Reinhard;
  } else if (function.target<GamutCompressionDesaturation>() != nullptr) {
    curves.gamut = RowGamut::Desaturation;
  } else {
    return false;
  }
  return true;
}

bool HasSameBits(const SupportVector& first, const SupportVector& second) {
  return std::equal(first.begin(), first.end(), second.begin(), second.end(), [](float a, float b) {
    return std::bit_cast<int>(a) == std::bit_cast<int>(b);
  });
}

template <Itu2390Form form>
void MapBeyondTables(const RowCurves& curves, float* pixel) {
  ApplyItu2390(form, curves.toneParams, pixel);
}

template <class Curve>
bool BindItu2390(const Curve& curve, const SupportVector& params, RowTone tone, RowCurves& curves) {
  if (params[8] >= 1.0F) {
    curves.tone = RowTone::HighlightOnly;
    return true;
  }
  // None are built here: a band neither allocates nor builds what all bands share.
  const Itu2390Tables* tables = curve.tables.get();
  if (tables == nullptr || !HasSameBits(tables->params, params)) return false;
  curves.tone = tone;
  curves.tables = {.mapped = tables->mapped.data(),
                   .encoded = tables->encoded.data(),
                   .ratio = tables->ratio.data(),
                   .decoded = tables->decoded.data()};
  curves.eetf = Itu2390CurveParams(params.data());
  curves.encodesAsSt2084 = tables->hostEncodesAsSt2084;
  curves.mapBeyondTables = MapBeyondTables<Curve::kForm>;
  return true;
}

bool BindTone(const RowSteps& steps, RowCurves& curves) {
  const ToneMapPixelFunction& function = steps.toneMap;
  const auto& controls = steps.settings.toneMapSettings.controls;
  curves.toneParams = steps.toneMapParams.data();
  curves.gain = controls.peakGain;
  curves.peak = controls.peak;
  curves.colorPreservation = controls.colorPreservation;
  if (const auto* curve = function.target<ITU2390MaxRGBToneMap>()) {
    return BindItu2390(*curve, steps.toneMapParams, RowTone::Bt2390MaxRGB, curves);
  }
  if (const auto* curve = function.target<ITU2390RGBByChannelToneMap>()) {
    return BindItu2390(*curve, steps.toneMapParams, RowTone::Bt2390ByChannel, curves);
  }
  if (!function) {
    curves.tone = RowTone::None;
  } else if (function.target<HuePreservationToneMap>() != nullptr) {
    curves.tone = RowTone::HuePreserving;
  } else if (function.target<CARToneMap>() != nullptr) {
    curves.tone = RowTone::Car;
  } else if (function.target<ITU2446AToneMap>() != nullptr) {
    curves.tone = RowTone::Bt2446A;
  } else {
    return false;
  }
  return true;
}

}  // namespace

bool MapRows(InstructionSet set, const RowSteps& steps, float* pixels, int rowCount, float width) {
  // From 2^24 on, columns counted in floats do not end where the width says.
  if (!(width < 0x1p24F)) return false;
  RowCurves curves;
  if (!BindGamut(steps, curves) || !BindTone(steps, curves)) return false;
  const bool isIdle = curves.gamut == RowGamut::None && curves.tone == RowTone::None;
  if (rowCount <= 0 || width <= 0.0F || isIdle) return true;
  const auto columns = static_cast<std::size_t>(std::ceil(width));
  RunOf(set)(curves, pixels, static_cast<std::size_t>(rowCount) * columns);
  return true;
}

}  // namespace Quillon
