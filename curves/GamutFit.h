#pragma once

#include "curves/SingleSt2084.h"
#include "curves/Three.h"
#include "curves/math.h"

// Brings colours into a gamut: chroma is reduced at constant hue and intensity in ITP
// (Recommendation ITU-R BT.2124, ITP of BT.2100's PQ form with T halved). Chroma is measured as |T|
// + |P|, whose ratios along one hue are those of any other measure.

/// What the fit reads for every pixel. Light is that of the destination's primaries, 1.0 at
/// graphics white; colours are in the order of pixels: blue, green, red.
typedef struct GamutFitParams {
  float toLms[9];    ///< light to LMS, 1.0 being 10000 nits; row by row
  float fromLms[9];  ///< and back
  float top;         ///< the largest light that the destination shows
  float topIntensity;
  float share;  ///< of the way to the boundary: up to here nothing is touched
  float bend;   ///< how soon what lies beyond is held back, 0 to 1
  /// A pixel whose smallest channel is at least this share of its largest, and the latter at most
  /// `safeLight`, lies within the share: it need not be looked at.
  float safeRatio;
  float safeLight;
} GamutFitParams;

/// The table of a fit holds, for hues at equal steps of HueOfFit from -1 to 3, first the intensity
/// of each hue's cusp, where the gamut reaches farthest; then, row by row, the chroma of the
/// boundary for intensities at equal steps from 0 to the cusp and on to the top.
#define QUILLON_FIT_HUES 256
#define QUILLON_FIT_COLUMNS 257
#define QUILLON_FIT_STEPS 32
#define QUILLON_FIT_ROWS 65

/// The hue as a number from -1 up to 3, without an angle.
QUILLON_CURVE Real HueOfFit(Real t, Real p) {
  const Real slope = p / (Magnitude(t) + Magnitude(p) + 1e-30f);
  return t < 0.0f ? 2.0f - slope : slope;
}

/// A place from 0 to `last` as the entry below it, of which there are `last`, and the way to the
/// next. What is not a number is 0.
QUILLON_CURVE QUILLON_BITS EntryBelow(Real place, float last, Real* way) {
  const Real positive = place > 0.0f ? place : Uniform(0.0f, place);
  const Real within = positive < last ? positive : Uniform(last, place);
  const Real rounded = within + 0x1p23f;
  const Real nearest = rounded - 0x1p23f;
  const Real above = nearest > within ? nearest - 1.0f : nearest;
  const Real entry = above < last ? above : Uniform(last - 1.0f, place);
  *way = within - entry;
  return BitsOf(entry + 0x1p23f) & 0xffffU;
}

/// Between two entries of a table that lie side by side.
QUILLON_CURVE Real BetweenEntries(QUILLON_TABLE table, QUILLON_BITS entry, Real way) {
  const Real from = LookUp(table, entry, way);
  return from + way * (LookUp(table, entry + 1U, way) - from);
}

/// Chroma of the boundary at a hue and intensity.
QUILLON_CURVE Real BoundaryChroma(QUILLON_TABLE table, float topIntensity, Real hue,
                                  Real intensity) {
  Real alongHues = hue;
  const QUILLON_BITS column =
      EntryBelow((hue + 1.0f) * (QUILLON_FIT_HUES / 4.0f), QUILLON_FIT_HUES, &alongHues);
  const Real cusp = BetweenEntries(table, column, alongHues);
  const Real below = intensity / cusp;
  const Real above = 2.0f - (topIntensity - intensity) / (topIntensity - cusp);
  Real alongRows = hue;
  const QUILLON_BITS row = EntryBelow((intensity < cusp ? below : above) * QUILLON_FIT_STEPS,
                                      2.0f * QUILLON_FIT_STEPS, &alongRows);
  const QUILLON_BITS entry = (row + 1U) * QUILLON_FIT_COLUMNS + column;
  const Real from = BetweenEntries(table, entry, alongHues);
  const Real to = BetweenEntries(table, entry + QUILLON_FIT_COLUMNS, alongHues);
  return from + alongRows * (to - from);
}

/// Chroma that the fit leaves of one, both as shares of the boundary's: itself up to the share, and
/// from there on along a hyperbola that begins with slope 1 and ends at 1.
QUILLON_CURVE Real FittedShare(Real chroma, float share, float bend) {
  const Real beyond = (chroma - share) / (1.0f - share);
  const Real held = beyond / (1.0f + bend * beyond);
  return share + (1.0f - share) * (held < 1.0f ? held : Uniform(1.0f, chroma));
}

/// Whether a pixel needs no look: it lies within the share, or is not finite.
QUILLON_CURVE QUILLON_MASK IsSurelyFitting(const Real* pixel, GamutFitParams p) {
  const Real largest = LargestOfThree(pixel[0], pixel[1], pixel[2]);
  const Real smallest = SmallestOfThree(pixel[0], pixel[1], pixel[2]);
  return ((smallest >= p.safeRatio * largest) & (largest <= p.safeLight)) |
         !(Magnitude(pixel[0]) + Magnitude(pixel[1]) + Magnitude(pixel[2]) < 1e6f);
}

/// A row of a matrix.
QUILLON_CURVE Real RowTimes(const float* m, Real x, Real y, Real z) {
  return m[0] * x + m[1] * y + m[2] * z;
}

/// Brought from rounding, and from what the table leaves out between its entries.
QUILLON_CURVE Real WithinLight(Real light, float top) {
  const Real positive = light > 0.0f ? light : Uniform(0.0f, light);
  return positive < top ? positive : Uniform(top, light);
}

/// Fits one pixel's three colour channels, in place.
QUILLON_CURVE void FitToGamut(Real* pixel, QUILLON_TABLE table, GamutFitParams p) {
  const QUILLON_MASK isFitting = IsSurelyFitting(pixel, p);
  if (AllOf(isFitting)) return;
  const Real x = isFitting ? Uniform(0.0f, pixel[0]) : pixel[0];
  const Real y = isFitting ? Uniform(0.0f, pixel[0]) : pixel[1];
  const Real z = isFitting ? Uniform(0.0f, pixel[0]) : pixel[2];

  const Real l = EncodeSingleSt2084(RowTimes(p.toLms, x, y, z));
  const Real m = EncodeSingleSt2084(RowTimes(p.toLms + 3, x, y, z));
  const Real s = EncodeSingleSt2084(RowTimes(p.toLms + 6, x, y, z));
  const Real any = 0.5f * l + 0.5f * m;
  const Real i = any < p.topIntensity ? any : Uniform(p.topIntensity, any);
  const Real ct = 1.61376953125f * l - 3.323486328125f * m + 1.709716796875f * s;
  const Real cp = 4.378173828125f * l - 4.24560546875f * m - 0.132568359375f * s;
  const Real t = 0.5f * ct;

  const Real chroma = Magnitude(t) + Magnitude(cp);
  const Real boundary = BoundaryChroma(table, p.topIntensity, HueOfFit(t, cp), i);
  const QUILLON_MASK isInside = isFitting | (chroma <= p.share * boundary);
  if (AllOf(isInside)) return;
  const Real least = Uniform(1e-9f, chroma);
  const Real reach = boundary > least ? boundary : least;
  const Real scale = FittedShare(chroma / reach, p.share, p.bend) * reach / (chroma + 1e-30f);
  const Real ft = scale * ct;
  const Real fp = scale * cp;

  const Real tilt = 0.008609037037932755f * ft + 0.11102962500302596f * fp;
  const Real fl = DecodeSingleSt2084(i + tilt);
  const Real fm = DecodeSingleSt2084(i - tilt);
  const Real fs = DecodeSingleSt2084(i + (0.5600313357106791f * ft - 0.32062717498731885f * fp));
  pixel[0] = isInside ? pixel[0] : WithinLight(RowTimes(p.fromLms, fl, fm, fs), p.top);
  pixel[1] = isInside ? pixel[1] : WithinLight(RowTimes(p.fromLms + 3, fl, fm, fs), p.top);
  pixel[2] = isInside ? pixel[2] : WithinLight(RowTimes(p.fromLms + 6, fl, fm, fs), p.top);
}
