#include "cpu/rows/RowForms.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>

#include "cpu/rows/RowCurves.h"

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

template <class... Curves>
bool BindGamut(CurveList<Curves...> /*list*/, const RowSteps& steps, RowCurves& curves) {
  const GamutCompressionPixelFunction& function = steps.compressGamut;
  curves.gamutParams = steps.gamutParams.data();
  if (!function) return true;
  const auto bindIf = [&]<class Curve>(const Curve* curve) {
    if (curve != nullptr) curves.gamut = kRowGamutOf<Curve>;
  };
  (bindIf(function.target<Curves>()), ...);
  return curves.gamut != RowGamut::None;
}

bool HasSameBits(const SupportVector& first, const SupportVector& second) {
  return std::equal(first.begin(), first.end(), second.begin(), second.end(), [](float a, float b) {
    return std::bit_cast<int>(a) == std::bit_cast<int>(b);
  });
}

template <Bt2390Form form>
void MapBeyondTables(const RowCurves& curves, float* pixel) {
  ApplyBt2390(form, curves.toneParams, pixel);
}

/// A curve that needs nothing for its rows.
template <class Curve>
bool BindCurve(const Curve& /*curve*/, const SupportVector& /*params*/, RowCurves& curves) {
  curves.tone = kRowToneOf<Curve>;
  return true;
}

template <class Curve>
  requires requires(Curve curve) { curve.tables; }
bool BindCurve(const Curve& curve, const SupportVector& params, RowCurves& curves) {
  if (params[Bt2390Params::kKneeStart] >= 1.0F) {
    curves.tone = RowTone::HighlightOnly;
    return true;
  }
  // None are built here: a band neither allocates nor builds what all bands share.
  const Bt2390Tables* tables = curve.tables.get();
  if (tables == nullptr || !HasSameBits(tables->params, params)) return false;
  curves.tone = kRowToneOf<Curve>;
  curves.tables = {.mapped = tables->mapped.data(),
                   .encoded = tables->encoded.data(),
                   .ratio = tables->ratio.data(),
                   .decoded = tables->decoded.data()};
  curves.eetf = EetfParamsOf(params.data());
  curves.encodesAsSt2084 = tables->hostEncodesAsSt2084;
  curves.mapBeyondTables = MapBeyondTables<Curve::kForm>;
  return true;
}

template <class... Curves>
bool BindTone(CurveList<Curves...> /*list*/, const RowSteps& steps, RowCurves& curves) {
  const ToneMapPixelFunction& function = steps.toneMap;
  curves.toneParams = steps.toneMapParams.data();
  curves.controls = steps.settings.toneMapSettings.controls;
  if (!function) return true;
  bool isBound = false;
  const auto bindIf = [&](const auto* curve) {
    if (curve != nullptr) isBound = BindCurve(*curve, steps.toneMapParams, curves);
  };
  (bindIf(function.target<Curves>()), ...);
  return isBound;
}

}  // namespace

bool MapRows(InstructionSet set, const RowSteps& steps, float* pixels, int rowCount, float width) {
  // From 2^24 on, columns counted in floats do not end where the width says.
  if (!(width < 0x1p24F)) return false;
  RowCurves curves;
  if (!BindGamut(GamutCurves{}, steps, curves) || !BindTone(ToneCurves{}, steps, curves))
    return false;
  const bool isIdle = curves.gamut == RowGamut::None && curves.tone == RowTone::None;
  if (rowCount <= 0 || width <= 0.0F || isIdle) return true;
  const auto columns = static_cast<std::size_t>(std::ceil(width));
  RunOf(set)(curves, pixels, static_cast<std::size_t>(rowCount) * columns);
  return true;
}

}  // namespace Quillon
