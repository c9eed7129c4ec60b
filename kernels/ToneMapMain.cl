// The kernels of the engine: one pixel of the working frame each, in place. The order of the
// arguments is that in which the engine pushes them.

#include "curves/Bt2390Linear.h"
#include "curves/Bt2446A.h"
#include "curves/Car.h"
#include "curves/GamutDesaturation.h"
#include "curves/GamutReinhard.h"
#include "curves/HighlightDesaturation.h"
#include "curves/HuePreservation.h"
#include "kernels/Frame.h"

// Of the arguments that all kernels begin with, those after the frame repeat what it says; the
// auxiliary buffer is null.
#define QUILLON_HEAD                                                             \
  QUILLON_FRAME(frame), QUILLON_GLOBAL void *auxiliary, unsigned rowPitchPixels, \
      unsigned formatFlag, FrameSize size

// Applies `curve`, a statement on the floats of `pixel`, to the pixel of this thread. Threads
// beyond the frame have none.
#define QUILLON_MAP_PIXEL(curve)                                    \
  const unsigned column = QUILLON_COLUMN;                           \
  const unsigned row = QUILLON_ROW;                                 \
  if (!IsInside(frame, column, row)) return;                        \
  const size_t place = PlaceOf(frame, column, row);                 \
  float pixel[4];                                                   \
  LoadPixel(QUILLON_PIXELS(frame), frame.formatFlag, place, pixel); \
  curve;                                                            \
  StorePixel(QUILLON_PIXELS(frame), frame.formatFlag, place, pixel)

QUILLON_KERNEL GamutCompressionKernelReinhard(QUILLON_HEAD, float limit) {
  QUILLON_MAP_PIXEL(CompressGamutReinhard(pixel, limit));
}

QUILLON_KERNEL GamutCompressionKernelDesaturation(QUILLON_HEAD, float weightRed, float weightGreen,
                                                  float weightBlue) {
  QUILLON_MAP_PIXEL(CompressGamutDesaturation(pixel, weightRed, weightGreen, weightBlue));
}

// Deliberate: the destination's peak before the knee.
QUILLON_KERNEL ToneMapKernelHuePreservationDesaturationMain(QUILLON_HEAD, float sourcePeak,
                                                            float destinationPeak, float knee,
                                                            float gain, float colorPreservation) {
  QUILLON_MAP_PIXEL(
      HuePreservingDesaturation(pixel, gain, sourcePeak, knee, destinationPeak, colorPreservation));
}

QUILLON_KERNEL ToneMapKernelITU2446A(QUILLON_HEAD, float gain, float colorPreservation,
                                     float rhoHdr, float rhoSdr, float inputScale,
                                     float outputScale) {
  QUILLON_MAP_PIXEL(
      ToneMapBt2446A(pixel, gain, rhoHdr, rhoSdr, inputScale, outputScale, colorPreservation));
}

QUILLON_KERNEL ToneMapKernelCARToneCurve(QUILLON_HEAD, float knee, float gain, float a, float b,
                                         float colorPreservation, float peak, float destinationPeak,
                                         float weightRed, float weightGreen, float weightBlue) {
  QUILLON_MAP_PIXEL(DesaturateHighlight(pixel, gain, knee, peak, colorPreservation, weightRed,
                                        weightGreen, weightBlue);
                    ToneMapCar(pixel, knee, a, b, destinationPeak));
}

// Both kernels of BT.2390 take the same arguments.
#define QUILLON_BT2390_ARGUMENTS                                                                  \
  float sourceBlack, float sourcePeak, float destinationBlack, float destinationPeak, float gain, \
      float colorPreservation, float peak, float referenceWhite, float weightRed,                 \
      float weightGreen, float weightBlue
#define QUILLON_BT2390_PARAMS                                                               \
  {                                                                                         \
    sourceBlack, sourcePeak, destinationBlack, destinationPeak, referenceWhite, gain, peak, \
        colorPreservation, weightRed, weightGreen, weightBlue                               \
  }

QUILLON_KERNEL ToneMapKernelITU2390RGBByChannel(QUILLON_HEAD, QUILLON_BT2390_ARGUMENTS) {
  const Bt2390LinearParams params = QUILLON_BT2390_PARAMS;
  QUILLON_MAP_PIXEL(ToneMapBt2390ByChannel(pixel, params));
}

QUILLON_KERNEL ToneMapKernelITU2390MaxRGBMain(QUILLON_HEAD, QUILLON_BT2390_ARGUMENTS) {
  const Bt2390LinearParams params = QUILLON_BT2390_PARAMS;
  QUILLON_MAP_PIXEL(ToneMapBt2390MaxRGB(pixel, params));
}
