#pragma once

#include "tests/tonemap/CurveTest.h"

namespace tonemap {

/// PQ code values of whole nits, as single precision has them (SMPTE ST 2084).
inline constexpr float kPQ1Nit = 0x1.3316cp-3F;
inline constexpr float kPQ1000Nits = 0x1.80ef7cp-1F;

/// What comes back from a trip through both PQ tables, in nits.
inline constexpr float k1NitByTables = 0.99950796F;
inline constexpr float k2NitsByTables = 1.99752295F;
inline constexpr float k100NitsByTables = 99.9184647F;
inline constexpr float k1000NitsByTables = 999.758606F;
inline constexpr float k5000NitsByTables = 4998.03857F;
/// The same with the exact encoding of light between two entries.
inline constexpr float k1p5NitsEncodedExactly = 1.49775863F;
inline constexpr float k100p5NitsEncodedExactly = 100.405769F;

/// The EETF's parameters, signals in PQ code values.
struct Eetf {
  float kneeStart = 0.9375F;
  float maxLum = 0.9375F;
  float minLum = 0.0F;
  float sourceBlack = 0.0F;
  float sourceRange = 1.0F;
};

/// Parameters of both BT.2390 curves that desaturate no highlights.
inline Quillon::SupportVector Bt2390Params(const Eetf& eetf, float referenceWhite = 1.0F) {
  constexpr float kNoHighlights = 1e6F;
  return {eetf.sourceBlack,
          eetf.sourceBlack + eetf.sourceRange,
          0.0F,
          0.0F,
          referenceWhite,
          eetf.sourceRange,
          eetf.minLum,
          eetf.maxLum,
          eetf.kneeStart,
          kNoHighlights,
          0.25F,
          0.5F,
          0.125F};
}

}  // namespace tonemap
