#pragma once

#include "curves/math64.h"

// Transfer functions of standard dynamic range. All go on beyond [0, 1] and are odd about 0.

/// Signal to light by a pure power. 2.4: ITU-R BT.1886 with a black of 0, the display of BT.601,
/// BT.709 and BT.2020 signals. 2.2 and 2.8: the displays assumed by BT.470 System M and System
/// B, G.
QUILLON_FUNCTION double DecodePower(double signal, double exponent) {
  return WithSignOf(signal, Power64(Magnitude64(signal), exponent));
}

QUILLON_FUNCTION double EncodePower(double light, double exponent) {
  return WithSignOf(light, Power64(Magnitude64(light), 1.0 / exponent));
}

/// IEC 61966-2-1 (sRGB), with the constants that it prints; the two pieces meet to within 3e-8.
QUILLON_FUNCTION double DecodeSrgb(double signal) {
  const double value = Magnitude64(signal);
  const double light = value <= 0.04045 ? value / 12.92 : Power64((value + 0.055) / 1.055, 2.4);
  return WithSignOf(signal, light);
}

QUILLON_FUNCTION double EncodeSrgb(double light) {
  const double value = Magnitude64(light);
  const double signal =
      value <= 0.04045 / 12.92 ? 12.92 * value : 1.055 * Power64(value, 1.0 / 2.4) - 0.055;
  return WithSignOf(light, signal);
}

/// SMPTE 240M: the inverse of the camera's curve, which is what its reference display shows. The
/// standard prints 1.1115 and 0.0228; these are the numbers with which value and slope meet.
QUILLON_FUNCTION double DecodeSmpte240M(double signal) {
  const double alpha = 1.1115721959217312;
  const double beta = 0.0228215855294448;
  const double value = Magnitude64(signal);
  const double light =
      value < 4.0 * beta ? value / 4.0 : Power64((value + (alpha - 1.0)) / alpha, 1.0 / 0.45);
  return WithSignOf(signal, light);
}

QUILLON_FUNCTION double EncodeSmpte240M(double light) {
  const double alpha = 1.1115721959217312;
  const double beta = 0.0228215855294448;
  const double value = Magnitude64(light);
  const double signal = value < beta ? 4.0 * value : alpha * Power64(value, 0.45) - (alpha - 1.0);
  return WithSignOf(light, signal);
}

/// SMPTE ST 428-1: light 1 is the 48 nits of the screen's white, signal 1 the 52.37 nits of its
/// encoding.
QUILLON_FUNCTION double DecodeSt428(double signal) {
  return 52.37 / 48.0 * DecodePower(signal, 2.6);
}

QUILLON_FUNCTION double EncodeSt428(double light) {
  return EncodePower(light * (48.0 / 52.37), 2.6);
}
