#pragma once

#include "curves/Bt2390.h"
#include "curves/HighlightDesaturation.h"
#include "curves/St2084.h"

// BT.2390 on linear light with PQ evaluated in full, where no lookup tables stand in for it.

/// What the curve reads for all pixels of a frame: black and peak of source and destination as PQ
/// code values, the luminance in nits of linear 1.0, and how highlights are desaturated.
typedef struct Bt2390LinearParams {
  float sourceBlack;
  float sourcePeak;
  float destinationBlack;
  float destinationPeak;
  float referenceWhite;
  float gain;
  float desaturationPeak;
  float colorPreservation;
  float weightRed;
  float weightGreen;
  float weightBlue;
} Bt2390LinearParams;

/// Nits to the float of a PQ code value, and back.
QUILLON_FUNCTION float EncodePQFloat(float nits) { return (float)EncodeSt2084((double)nits); }
QUILLON_FUNCTION float DecodePQFloat(float signal) { return (float)DecodeSt2084((double)signal); }

/// Highlights of one pixel desaturated and its three channels put into PQ code values, in place.
/// False when the curve lets the pixel pass as it is then: its channels are linear still.
QUILLON_FUNCTION bool EncodeForBt2390(float* pixel, EetfParams curve, Bt2390LinearParams p) {
  const float threshold = DecodePQFloat(curve.kneeStart) / p.referenceWhite;
  DesaturateHighlight(pixel, p.gain, threshold, p.desaturationPeak, p.colorPreservation,
                      p.weightRed, p.weightGreen, p.weightBlue);
  if (curve.kneeStart >= 1.0f) return false;
  for (int channel = 0; channel < 3; ++channel) {
    pixel[channel] = EncodePQFloat(p.referenceWhite * pixel[channel]);
  }
  return true;
}

QUILLON_FUNCTION void DecodeFromBt2390(float* pixel, Bt2390LinearParams p) {
  for (int channel = 0; channel < 3; ++channel) {
    pixel[channel] = DecodePQFloat(pixel[channel]) / p.referenceWhite;
  }
}

/// One pixel's three colour channels in place, linear light to linear light.
QUILLON_FUNCTION void ToneMapBt2390MaxRGB(float* pixel, Bt2390LinearParams p) {
  const EetfParams curve =
      MakeEetfParams(p.sourceBlack, p.sourcePeak, p.destinationBlack, p.destinationPeak);
  if (!EncodeForBt2390(pixel, curve, p)) return;
  EetfMaxRGB(pixel, curve);
  DecodeFromBt2390(pixel, p);
}

QUILLON_FUNCTION void ToneMapBt2390ByChannel(float* pixel, Bt2390LinearParams p) {
  const EetfParams curve =
      MakeEetfParams(p.sourceBlack, p.sourcePeak, p.destinationBlack, p.destinationPeak);
  if (!EncodeForBt2390(pixel, curve, p)) return;
  EetfByChannel(pixel, curve);
  DecodeFromBt2390(pixel, p);
}
