#pragma once

// The transfer functions of curves/SdrTransfer.h and curves/St2084.h on a vector, each lane with
// the bits of the function for one number. Included like WideLanes.h.

#include "curves/SdrTransfer.h"
#include "curves/St2084.h"
#include "refhost/chromant/rows/WideLanes.h"

namespace RefHost {
namespace {

WideLanes Everywhere(double value) { return value - WideLanes{}; }

/// Power64 for y above 0.
[[gnu::always_inline]] inline WideLanes PowerOf(WideLanes x, double y) {
  WideLanes power = Exp2OfAny(y * Log2OfNormal(x));
  power = x < 0x1p-1020 ? WideLanes{} : power;
  power = x == QUILLON_INFINITY ? x : power;
  return x >= 0.0 ? power : Everywhere(QUILLON_NAN);
}

WideLanes MagnitudeOf(WideLanes x) { return WideOf(WideBitsOf(x) & 0x7fffffffffffffffU, x); }

WideLanes WithSignOfLanes(WideLanes sign, WideLanes x) {
  return WideOf((WideBitsOf(x) & 0x7fffffffffffffffU) | (WideBitsOf(sign) & 0x8000000000000000U),
                x);
}

struct Identity {
  [[gnu::always_inline]] WideLanes operator()(WideLanes x) const { return x; }
};

/// DecodePower, and EncodePower with the reciprocal.
struct OddPower {
  double exponent;
  [[gnu::always_inline]] WideLanes operator()(WideLanes x) const {
    return WithSignOfLanes(x, PowerOf(MagnitudeOf(x), exponent));
  }
};

struct SrgbDecoder {
  [[gnu::always_inline]] WideLanes operator()(WideLanes signal) const {
    const WideLanes value = MagnitudeOf(signal);
    const WideLanes power = PowerOf((value + 0.055) / 1.055, 2.4);
    return WithSignOfLanes(signal, value <= 0.04045 ? value / 12.92 : power);
  }
};

struct SrgbEncoder {
  [[gnu::always_inline]] WideLanes operator()(WideLanes light) const {
    const WideLanes value = MagnitudeOf(light);
    const WideLanes power = 1.055 * PowerOf(value, 1.0 / 2.4) - 0.055;
    return WithSignOfLanes(light, value <= 0.04045 / 12.92 ? 12.92 * value : power);
  }
};

/// PQ to light relative to graphics white.
struct PQDecoder {
  double whiteNits;
  [[gnu::always_inline]] WideLanes operator()(WideLanes signal) const {
    const WideLanes p = PowerOf(signal, 1.0 / QUILLON_ST2084_M2);
    const WideLanes denominator = 18.8515625 - 18.6875 * p;
    const WideLanes numerator = p - 0.8359375;
    WideLanes nits = 10000.0 * PowerOf(numerator / denominator, 1.0 / QUILLON_ST2084_M1);
    nits = numerator <= 0.0 ? WideLanes{} : nits;
    nits = denominator <= 0.0 ? Everywhere(QUILLON_INFINITY) : nits;
    nits = signal <= 0.0 ? WideLanes{} : nits;
    return nits / whiteNits;
  }
};

struct PQEncoder {
  double whiteNits;
  [[gnu::always_inline]] WideLanes operator()(WideLanes light) const {
    const WideLanes nits = light * whiteNits;
    const WideLanes power = PowerOf(nits / 10000.0, QUILLON_ST2084_M1);
    const WideLanes ratio =
        power == QUILLON_INFINITY ? Everywhere(18.8515625 / 18.6875) : St2084Ratio(power);
    const WideLanes signal = PowerOf(ratio, QUILLON_ST2084_M2);
    return nits <= 0.0 ? WideLanes{} : signal;
  }
};

/// ConvertPrimaries, or TransformByMatrix3 where grey has no claim to stay grey.
[[gnu::always_inline]] inline void MixLight(const double* m, bool keepsGrey, const WideLanes* from,
                                            WideLanes* to) {
  const auto isKept = (from[0] == from[1]) & (from[1] == from[2]) & (keepsGrey ? -1LL : 0LL);
  for (int c = 0; c < 3; ++c, m += 3) {
    to[c] = isKept ? from[c] : m[0] * from[0] + m[1] * from[1] + m[2] * from[2];
  }
}

}  // namespace
}  // namespace RefHost
