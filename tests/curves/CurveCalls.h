#pragma once

// Every curve as a call from an array of numbers to another, in the language that the curves are
// written in: one text for C++, CUDA C++ and OpenCL C. CurveCalls.inc lists the calls and says how
// many numbers each takes and gives.

#include "curves/Bt2390.h"
#include "curves/Bt2390Linear.h"
#include "curves/Bt2446A.h"
#include "curves/Car.h"
#include "curves/GamutDesaturation.h"
#include "curves/GamutFit.h"
#include "curves/GamutReinhard.h"
#include "curves/HalfFloat.h"
#include "curves/HighlightDesaturation.h"
#include "curves/Hlg.h"
#include "curves/HuePreservation.h"
#include "curves/Language.h"
#include "curves/Matrix3.h"
#include "curves/SdrTransfer.h"
#include "curves/SingleSt2084.h"
#include "curves/SoftKnee.h"
#include "curves/St2084.h"
#include "curves/Three.h"
#include "curves/math.h"
#include "curves/math64.h"

QUILLON_FUNCTION void CallPower(const float* in, float* out) { out[0] = Power(in[0], in[1]); }

QUILLON_FUNCTION void CallPowerOfBase(const float* in, float* out) {
  out[0] = PowerOfBase(in[0], in[1]);
}

QUILLON_FUNCTION void CallLogarithm(const float* in, float* out) { out[0] = Logarithm(in[0]); }

QUILLON_FUNCTION void CallExponential(const float* in, float* out) { out[0] = Exponential(in[0]); }

QUILLON_FUNCTION void CallSoftKnee(const float* in, float* out) {
  out[0] = SoftKnee(in[0], in[1], in[2], in[3]);
}

/// As light, and as a signal.
QUILLON_FUNCTION void CallSingleSt2084(const float* in, float* out) {
  out[0] = EncodeSingleSt2084(in[0]);
  out[1] = DecodeSingleSt2084(in[0]);
}

/// The hue of T and P, a place in a table, and a share of the boundary.
QUILLON_FUNCTION void CallGamutFit(const float* in, float* out) {
  out[0] = HueOfFit(in[0], in[1]);
  out[2] = FittedShare(in[2], 0.9f, 0.94f);
  float way = 0.0f;
  out[1] = (float)EntryBelow(in[2], 24.0f, &way) + way;
}

/// A float rounded to half, and any half.
QUILLON_FUNCTION void CallHalfFloat(const float* in, float* out) {
  out[0] = FromHalf(ToHalf(in[0]));
  out[1] = FromHalf(BitsOf(in[0]) & 0xffffU);
}

// Curves of pixels: three channels come first, then what the curve reads.

QUILLON_FUNCTION void CopyPixel(const float* in, float* out) {
  for (int channel = 0; channel < 3; ++channel) out[channel] = in[channel];
}

QUILLON_FUNCTION void CallThree(const float* in, float* out) {
  out[0] = LargestOfThree(in[0], in[1], in[2]);
  out[1] = SmallestOfThree(in[0], in[1], in[2]);
  out[2] = ClampToUnit(in[0]);
}

QUILLON_FUNCTION void CallHuePreservation(const float* in, float* out) {
  CopyPixel(in, out);
  HuePreservingDesaturation(out, in[3], in[4], in[5], in[6], in[7]);
}

QUILLON_FUNCTION void CallHighlightDesaturation(const float* in, float* out) {
  CopyPixel(in, out);
  DesaturateHighlight(out, in[3], in[4], in[5], in[6], in[7], in[8], in[9]);
}

QUILLON_FUNCTION EetfParams EetfParamsOf(const float* in) {
  EetfParams params;
  params.sourceBlack = in[0];
  params.sourceRange = in[1];
  params.kneeStart = in[2];
  params.minLum = in[3];
  params.maxLum = in[4];
  return params;
}

QUILLON_FUNCTION void CallEetfByChannel(const float* in, float* out) {
  CopyPixel(in, out);
  EetfByChannel(out, EetfParamsOf(in + 3));
}

QUILLON_FUNCTION void CallEetfMaxRGB(const float* in, float* out) {
  CopyPixel(in, out);
  EetfMaxRGB(out, EetfParamsOf(in + 3));
}

/// Black and peak of source and destination, reference white, gain, peak, colour preservation.
QUILLON_FUNCTION Bt2390LinearParams Bt2390LinearParamsOf(const float* in) {
  const Bt2390LinearParams params = {in[0], in[1], in[2],   in[3],   in[4],  in[5],
                                     in[6], in[7], 0.2627f, 0.6780f, 0.0593f};
  return params;
}

QUILLON_FUNCTION void CallBt2390LinearByChannel(const float* in, float* out) {
  CopyPixel(in, out);
  ToneMapBt2390ByChannel(out, Bt2390LinearParamsOf(in + 3));
}

QUILLON_FUNCTION void CallBt2390LinearMaxRGB(const float* in, float* out) {
  CopyPixel(in, out);
  ToneMapBt2390MaxRGB(out, Bt2390LinearParamsOf(in + 3));
}

QUILLON_FUNCTION void CallBt2446A(const float* in, float* out) {
  CopyPixel(in, out);
  ToneMapBt2446A(out, in[3], in[4], in[5], in[6], in[7], in[8]);
}

QUILLON_FUNCTION void CallCar(const float* in, float* out) {
  CopyPixel(in, out);
  ToneMapCar(out, in[3], in[4], in[5], in[6]);
}

QUILLON_FUNCTION void CallGamutDesaturation(const float* in, float* out) {
  CopyPixel(in, out);
  CompressGamutDesaturation(out, in[3], in[4], in[5]);
}

QUILLON_FUNCTION void CallGamutReinhard(const float* in, float* out) {
  CopyPixel(in, out);
  CompressGamutReinhard(out, in[3]);
}

// Curves in double precision.

QUILLON_FUNCTION void CallPower64(const double* in, double* out) { out[0] = Power64(in[0], in[1]); }

QUILLON_FUNCTION void CallLogarithm64(const double* in, double* out) {
  out[0] = Logarithm64(in[0]);
}

QUILLON_FUNCTION void CallExponential64(const double* in, double* out) {
  out[0] = Exponential64(in[0]);
}

QUILLON_FUNCTION void CallDecodeSt2084(const double* in, double* out) {
  out[0] = DecodeSt2084(in[0]);
}

QUILLON_FUNCTION void CallEncodeSt2084(const double* in, double* out) {
  out[0] = EncodeSt2084(in[0]);
}

QUILLON_FUNCTION void CallHlgOetf(const double* in, double* out) { out[0] = HlgOetf(in[0]); }

QUILLON_FUNCTION void CallHlgInverseOetf(const double* in, double* out) {
  out[0] = HlgInverseOetf(in[0]);
}

QUILLON_FUNCTION void CallHlgSystemGamma(const double* in, double* out) {
  out[0] = HlgSystemGamma(in[0]);
}

QUILLON_FUNCTION void CallDecodePower(const double* in, double* out) {
  out[0] = DecodePower(in[0], in[1]);
}

QUILLON_FUNCTION void CallEncodePower(const double* in, double* out) {
  out[0] = EncodePower(in[0], in[1]);
}

QUILLON_FUNCTION void CallDecodeSrgb(const double* in, double* out) { out[0] = DecodeSrgb(in[0]); }

QUILLON_FUNCTION void CallEncodeSrgb(const double* in, double* out) { out[0] = EncodeSrgb(in[0]); }

QUILLON_FUNCTION void CallDecodeSmpte240M(const double* in, double* out) {
  out[0] = DecodeSmpte240M(in[0]);
}

QUILLON_FUNCTION void CallEncodeSmpte240M(const double* in, double* out) {
  out[0] = EncodeSmpte240M(in[0]);
}

QUILLON_FUNCTION void CallDecodeSt428(const double* in, double* out) {
  out[0] = DecodeSt428(in[0]);
}

QUILLON_FUNCTION void CallEncodeSt428(const double* in, double* out) {
  out[0] = EncodeSt428(in[0]);
}

// Three channels, three weights, the peak and gamma.

QUILLON_FUNCTION void CopyPixel64(const double* in, double* out) {
  for (int channel = 0; channel < 3; ++channel) out[channel] = in[channel];
}

QUILLON_FUNCTION void CallDecodeHlg(const double* in, double* out) {
  CopyPixel64(in, out);
  DecodeHlg(out, in + 3, in[6], in[7]);
}

QUILLON_FUNCTION void CallEncodeHlg(const double* in, double* out) {
  CopyPixel64(in, out);
  EncodeHlg(out, in + 3, in[6], in[7]);
}

// A vector of three and a matrix, or matrices alone.

QUILLON_FUNCTION void CallTransformByMatrix3(const double* in, double* out) {
  CopyPixel64(in, out);
  TransformByMatrix3(in + 3, out);
}

QUILLON_FUNCTION void CallConvertPrimaries(const double* in, double* out) {
  CopyPixel64(in, out);
  ConvertPrimaries(in + 3, out);
}

QUILLON_FUNCTION void CallMultiplyMatrix3(const double* in, double* out) {
  MultiplyMatrix3(in, in + 9, out);
}

QUILLON_FUNCTION void CallInvertMatrix3(const double* in, double* out) {
  out[9] = InvertMatrix3(in, out);
}
