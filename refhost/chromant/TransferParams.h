#pragma once

#include "curves/Hlg.h"
#include "curves/SdrTransfer.h"
#include "curves/St2084.h"

// Signal to linear light and back, in every language that the curves are written in.

/// A transfer characteristic with what it reads.
typedef struct TransferParams {
  /// H.273 code point; of those that mean the same curve, the one that stands for all.
  int transfer;
  int reserved;
  /// Luminance of graphics white, linear 1.0.
  double whiteNits;
  // HLG alone: the display, and the luminance of red, green and blue.
  double hlgPeakNits;
  double hlgGamma;
  double luminanceWeights[3];
} TransferParams;

/// The curves that take one channel at a time.
QUILLON_FUNCTION double DecodeChannel(int transfer, double whiteNits, double signal) {
  switch (transfer) {
    case 1:  // BT.709 and others shown by BT.1886
      return DecodePower(signal, 2.4);
    case 4:  // gamma 2.2
      return DecodePower(signal, 2.2);
    case 5:  // gamma 2.8
      return DecodePower(signal, 2.8);
    case 7:  // SMPTE 240M
      return DecodeSmpte240M(signal);
    case 13:  // sRGB
      return DecodeSrgb(signal);
    case 16:  // PQ
      return DecodeSt2084(signal) / whiteNits;
    case 17:  // ST 428-1
      return DecodeSt428(signal);
    default:  // 8, linear
      return signal;
  }
}

QUILLON_FUNCTION double EncodeChannel(int transfer, double whiteNits, double light) {
  switch (transfer) {
    case 1:
      return EncodePower(light, 2.4);
    case 4:
      return EncodePower(light, 2.2);
    case 5:
      return EncodePower(light, 2.8);
    case 7:
      return EncodeSmpte240M(light);
    case 13:
      return EncodeSrgb(light);
    case 16:
      return EncodeSt2084(light * whiteNits);
    case 17:
      return EncodeSt428(light);
    default:
      return light;
  }
}

/// One pixel (red, green, blue) in place. 18 is HLG, whose OOTF takes the pixel as a whole.
QUILLON_FUNCTION void DecodePixel(TransferParams p, double* rgb) {
  if (p.transfer == 18) {
    DecodeHlg(rgb, p.luminanceWeights, p.hlgPeakNits, p.hlgGamma);
    for (int c = 0; c < 3; ++c) rgb[c] = rgb[c] / p.whiteNits;
  } else {
    for (int c = 0; c < 3; ++c) rgb[c] = DecodeChannel(p.transfer, p.whiteNits, rgb[c]);
  }
}

QUILLON_FUNCTION void EncodePixel(TransferParams p, double* rgb) {
  if (p.transfer == 18) {
    for (int c = 0; c < 3; ++c) rgb[c] = rgb[c] * p.whiteNits;
    EncodeHlg(rgb, p.luminanceWeights, p.hlgPeakNits, p.hlgGamma);
  } else {
    for (int c = 0; c < 3; ++c) rgb[c] = EncodeChannel(p.transfer, p.whiteNits, rgb[c]);
  }
}
