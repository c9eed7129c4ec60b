#include "cpu/rows/RowForms.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <memory>

#include "cpu/rows/RowCurves.h"
#include "tonemap/CarToneCurve.h"
#include "tonemap/HuePreservation.h"
#include "tonemap/Itu2390.h"
#include "tonemap/Itu2446A.h"
#include "tonemap/PqTables.h"

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

/// The row form's curves, and what they borrow.
struct BoundCurves {
  RowCurves curves;
  std::shared_ptr<const Itu2390Tables> tables;
};

bool BindGamut(const RowSteps& steps, BoundCurves& bound) {
  const GamutCompressionPixelFunction& function = steps.compressGamut;
  bound.curves.gamutParams = steps.gamutParams.data();
  if (!function) {
    bound.curves.gamut = RowGamut::None;
  } else if (function.target<GamutCompressionReinhard>() != nullptr) {
    bound.curves.gamut = RowGamut::Reinhard;
  } else if (function.target<GamutCompressionDesaturation>() != nullptr) {
    bound.curves.gamut = RowGamut::Desaturation;
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
bool BindItu2390(const Curve& curve, const SupportVector& params, RowTone tone,
                 BoundCurves& bound) {
  if (params[8] >= 1.0F) {
    bound.curves.tone = RowTone::HighlightOnly;
    return true;
  }
  const bool isBound = curve.tables != nullptr && HasSameBits(curve.tables->params, params);
  bound.tables = isBound ? curve.tables : MakeItu2390Tables(Curve::kForm, params);
  if (bound.tables == nullptr) return false;
  bound.curves.tone = tone;
  bound.curves.tables = {.mapped = bound.tables->mapped.data(),
                         .encoded = bound.tables->encoded.data(),
                         .ratio = bound.tables->ratio.data(),
                         .decoded = bound.tables->decoded.data()};
  bound.curves.eetf = Itu2390CurveParams(params.data());
  bound.curves.encodesAsSt2084 = HostEncodesAsSt2084();
  bound.curves.mapBeyondTables = MapBeyondTables<Curve::kForm>;
  return true;
}

bool BindTone(const RowSteps& steps, BoundCurves& bound) {
  const ToneMapPixelFunction& function = steps.toneMap;
  const auto& controls = steps.settings.toneMapSettings.controls;
  bound.curves.toneParams = steps.toneMapParams.data();
  bound.curves.gain = controls.peakGain;
  bound.curves.peak = controls.peak;
  bound.curves.colorPreservation = controls.colorPreservation;
  if (const auto* curve = function.target<ITU2390MaxRGBToneMap>()) {
    return BindItu2390(*curve, steps.toneMapParams, RowTone::Bt2390MaxRGB, bound);
  }
  if (const auto* curve = function.target<ITU2390RGBByChannelToneMap>()) {
    return BindItu2390(*curve, steps.toneMapParams, RowTone::Bt2390ByChannel, bound);
  }
  if (!function) {
    bound.curves.tone = RowTone::None;
  } else if (function.target<HuePreservationToneMap>() != nullptr) {
    bound.curves.tone = RowTone::HuePreserving;
  } else if (function.target<CARToneMap>() != nullptr) {
    bound.curves.tone = RowTone::Car;
  } else if (function.target<ITU2446AToneMap>() != nullptr) {
    bound.curves.tone = RowTone::Bt2446A;
  } else {
    return false;
  }
  return true;
}

}  // namespace

bool CanRun(InstructionSet set) {
#if defined(__x86_64__)
  switch (set) {
    case InstructionSet::Avx512:
      return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
             __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vl") != 0;
    case InstructionSet::Avx2:
      return __builtin_cpu_supports("avx2") != 0;
    case InstructionSet::Baseline:
      return true;
  }
#endif
  return set == InstructionSet::Baseline;
}

InstructionSet BestInstructionSet() {
  static const InstructionSet kBest = CanRun(InstructionSet::Avx512) ? InstructionSet::Avx512
                                      : CanRun(InstructionSet::Avx2) ? InstructionSet::Avx2
                                                                     : InstructionSet::Baseline;
  return kBest;
}

bool MapRows(InstructionSet set, const RowSteps& steps, float* pixels, int rowCount, float width) {
  // From 2^24 on, columns counted in floats do not end where the width says.
  if (!(width < 0x1p24F)) return false;
  BoundCurves bound;
  if (!BindGamut(steps, bound) || !BindTone(steps, bound)) return false;
  const bool isIdle = bound.curves.gamut == RowGamut::None && bound.curves.tone == RowTone::None;
  if (rowCount <= 0 || width <= 0.0F || isIdle) return true;
  const auto columns = static_cast<std::size_t>(std::ceil(width));
  RunOf(set)(bound.curves, pixels, static_cast<std::size_t>(rowCount) * columns);
  return true;
}

}  // namespace Quillon
