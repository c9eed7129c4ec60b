#pragma once

// Transfer functions whose results, rounded to float, are those of WideTransfer.h, in less
// time: they come close to them in double precision, and where that leaves two floats to choose
// from, the curves of WideTransfer.h are asked. AVX-512 alone; included like WideLanes.h.

#include "refhost/chromant/rows/QuickTables.h"
#include "refhost/chromant/rows/WideTransfer.h"

#if defined(__AVX512F__)

namespace RefHost {
namespace {

/// The entries that the low four bits of each lane name.
[[gnu::always_inline]] inline WideLanes Pick(const double* table, WideBits index) {
  return __builtin_bit_cast(
      WideLanes, _mm512_permutex2var_pd(_mm512_load_pd(table), __builtin_bit_cast(__m512i, index),
                                        _mm512_load_pd(table + kLanes)));
}

/// a * b + c, rounded once, which nothing here depends on.
[[gnu::always_inline]] inline WideLanes Fused(WideLanes a, WideLanes b, WideLanes c) {
  return __builtin_bit_cast(
      WideLanes, _mm512_fmadd_pd(__builtin_bit_cast(__m512d, a), __builtin_bit_cast(__m512d, b),
                                 __builtin_bit_cast(__m512d, c)));
}

/// The polynomial of degree 6 with these coefficients, in few steps that wait for each other.
template <class Coefficient>
[[gnu::always_inline]] inline WideLanes Polynomial6(WideLanes x, const Coefficient& c) {
  const WideLanes x2 = x * x;
  const WideLanes low = Fused(x2, Fused(c(3), x, c(2)), Fused(c(1), x, c(0)));
  const WideLanes high = Fused(x2, c(6), Fused(c(5), x, c(4)));
  return Fused(x2 * x2, high, low);
}

/// A number from 2^-15 up to 2, taken apart for the tables.
struct Parts {
  [[gnu::always_inline]] explicit Parts(WideLanes x)
      : part(WideBitsOf(x) >> 48), exponent(WideBitsOf(x) >> 52) {
    constexpr unsigned long long kOne = 0x3ff0000000000000U;
    const WideLanes mantissa = WideOf((WideBitsOf(x) & 0x000fffffffffffffU) | kOne, x);
    const WideLanes middle =
        WideOf((WideBitsOf(x) & 0x000f000000000000U) | (kOne + 0x0000800000000000U), x);
    aboveMiddle = mantissa - middle;
  }
  WideBits part;
  WideBits exponent;
  WideLanes aboveMiddle;
};

[[gnu::always_inline]] inline WideLanes QuickPower(const QuickPowerTable& table, WideLanes x) {
  const Parts parts(x);
  const auto coefficient = [&](int k) { return Pick(table.series[k], parts.part); };
  return Polynomial6(parts.aboveMiddle, coefficient) * Pick(table.ofExponent, parts.exponent);
}

[[gnu::always_inline]] inline __mmask8 AreBelow(WideLanes a, WideLanes b) {
  return _mm512_cmp_pd_mask(__builtin_bit_cast(__m512d, a), __builtin_bit_cast(__m512d, b),
                            _CMP_LT_OQ);
}

/// The lanes from a number up to another.
[[gnu::always_inline]] inline __mmask8 AreFromUpTo(double from, WideLanes x, double to) {
  return static_cast<__mmask8>(AreBelow(x, Everywhere(to)) & ~AreBelow(x, Everywhere(from)));
}

/// The lanes that lie so near to the middle between two floats that what is between a quick curve
/// and its model, less than 2^-36 of the value, could round to the other one.
[[gnu::always_inline]] inline __mmask8 AreNearMiddle(WideLanes x) {
  constexpr unsigned long long kReach = 1U << 17U;
  constexpr unsigned long long kMiddle = 1U << 28U;  // of the bits that a float does not have
  const WideBits above = (WideBitsOf(x) + (kReach - kMiddle)) << 35;
  return _mm512_cmplt_epu64_mask(__builtin_bit_cast(__m512i, above),
                                 _mm512_set1_epi64(2 * kReach << 35U));
}

/// The lanes, and 0 in all others.
[[gnu::always_inline]] inline WideLanes Only(__mmask8 lanes, WideLanes x) {
  return __builtin_bit_cast(WideLanes, _mm512_maskz_mov_pd(lanes, __builtin_bit_cast(__m512d, x)));
}

/// Stores what a quick curve gave for the usual lanes, and 0 for those where it is known to be 0;
/// what its model gives where a lane is neither, or not sure.
template <class Model>
[[gnu::always_inline]] inline void StoreSure(float* to, WideLanes quick, __mmask8 usual,
                                             __mmask8 zero, WideLanes sign, const Model& model) {
  const auto sure = static_cast<__mmask8>((usual & ~AreNearMiddle(quick)) | zero);
  if (__builtin_expect(sure == 0xff, 1)) {
    StoreNarrowed(to, WithSignOfLanes(sign, Only(usual, quick)));
  } else {
    StoreNarrowed(to, model());
  }
}

struct QuickPQDecoder {
  const QuickTables& tables;
  PQDecoder model;
  double scale;  ///< 10000 nits over white

  /// Light, and which lanes it is right for: those that are usual, and those that are dark.
  struct Decoded {
    WideLanes light;
    __mmask8 usual;
    __mmask8 dark;
  };

  [[gnu::always_inline]] Decoded Decode(WideLanes signal) const {
    const WideLanes p = QuickPower(tables.pqSignal, signal);
    const WideLanes ratio = (p - 0.8359375) / (18.8515625 - 18.6875 * p);
    return {scale * QuickPower(tables.pqLight, ratio), AreFromUpTo(0x1p-7, signal, 1.0),
            _mm512_cmp_pd_mask(__builtin_bit_cast(__m512d, signal),
                               __builtin_bit_cast(__m512d, WideLanes{}), _CMP_LE_OQ)};
  }

  [[gnu::always_inline]] void operator()(const float* from, float* to) const {
    const WideLanes signal = LoadWidened(from);
    const Decoded quick = Decode(signal);
    StoreSure(to, quick.light, quick.usual, quick.dark, WideLanes{},
              [&]() { return model(signal); });
  }
};

/// PQ to linear light of other primaries. What the matrix makes of lights that are a little off is
/// rounded both ways: where both give one float it is the right one.
struct QuickPQTransformer {
  QuickPQDecoder decode;
  const double* matrix;
  bool keepsGrey;

  [[gnu::always_inline]] void operator()(float* red, float* green, float* blue) const {
    const WideLanes signals[3] = {LoadWidened(red), LoadWidened(green), LoadWidened(blue)};
    WideLanes lights[3];
    __mmask8 known = 0xff;
    for (int c = 0; c < 3; ++c) {
      const auto quick = decode.Decode(signals[c]);
      lights[c] = Only(quick.usual, quick.light);
      known &= quick.usual | quick.dark;
    }
    float* const to[3] = {red, green, blue};
    WideLanes mixed[3];
    MixLight(matrix, keepsGrey, lights, mixed);
    // Twice what a quick curve may be off.
    constexpr double kOff = 0x1p-35;
    const double* m = matrix;
    FloatLanes rounded[3];
    bool isSure = known == 0xff;
    for (int c = 0; c < 3; ++c, m += 3) {
      const WideLanes off = kOff * (MagnitudeOf(Everywhere(m[0])) * lights[0] +
                                    MagnitudeOf(Everywhere(m[1])) * lights[1] +
                                    MagnitudeOf(Everywhere(m[2])) * lights[2] + lights[c]);
      rounded[c] = __builtin_convertvector(mixed[c] - off, FloatLanes);
      isSure = isSure && AreSame(rounded[c], __builtin_convertvector(mixed[c] + off, FloatLanes));
    }
    if (__builtin_expect(static_cast<int>(isSure), 1) != 0) {
      for (int c = 0; c < 3; ++c) Store(to[c], rounded[c]);
      return;
    }
    for (int c = 0; c < 3; ++c) lights[c] = decode.model(signals[c]);
    MixLight(matrix, keepsGrey, lights, mixed);
    for (int c = 0; c < 3; ++c) StoreNarrowed(to[c], mixed[c]);
  }

 private:
  [[gnu::always_inline]] static bool AreSame(FloatLanes a, FloatLanes b) {
    return _mm256_cmp_ps_mask(__builtin_bit_cast(__m256, a), __builtin_bit_cast(__m256, b),
                              _CMP_NEQ_UQ) == 0;
  }
};

struct QuickRoot {
  const QuickPowerTable& table;
  OddPower model;

  [[gnu::always_inline]] void operator()(const double* from, float* to) const {
    const auto light = Load<WideLanes>(from);
    const WideLanes value = MagnitudeOf(light);
    const WideLanes power = QuickPower(table, value);
    const __mmask8 usual = AreFromUpTo(0x1p-15, value, 2.0);
    const __mmask8 black = AreBelow(value, Everywhere(0x1p-1020));
    StoreSure(to, power, usual, black, light, [&]() { return model(light); });
  }
};

}  // namespace
}  // namespace RefHost

#endif
