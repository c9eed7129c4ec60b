// Maps one frame with an installed engine and reference host: a picture in linear light with a peak
// of 1000 nits becomes sRGB, whose 1.0 is graphics white (203 nits).

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "engine/Quillon.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;

namespace {

constexpr int kWidth = 2;
constexpr int kHeight = 1;
constexpr float kPeak = 1000.0F / 203.0F;

ColorSpace Bt709(std::uint8_t transfer, int peakNits) {
  ColorDescription description;
  description.primaries = RefHost::kPrimariesBT709;
  description.transfer = transfer;
  description.peakLuminance = peakNits;
  return ColorSpace(description);
}

PX::VideoFrameRef MakeFrame(const ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  KS::CreateVideoFrame(frame, orvmediatypes::kLinearFloatBGRA, kWidth, kHeight, {}, colorSpace,
                       false, false);
  return frame;
}

float* PixelsOf(const PX::VideoFrameRef& frame) {
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(frame);
  return static_cast<float*>(memory->GetData());
}

void SetGrey(float* pixel, float value, float alpha) {
  pixel[0] = pixel[1] = pixel[2] = value;
  pixel[3] = alpha;
}

bool IsGrey(const float* pixel, float value, float alpha) {
  bool same = pixel[3] == alpha;
  for (int i = 0; i < 3; ++i) same = same && std::fabs(pixel[i] - value) < 1e-5F;
  if (!same) {
    std::printf("got %g %g %g %g, expected %g and alpha %g\n", pixel[0], pixel[1], pixel[2],
                pixel[3], value, alpha);
  }
  return same;
}

}  // namespace

int main() {
  PX::GamutMappingUtils::GamutMappingSettings settings;
  auto& toneMap = settings.toneMapSettings;
  toneMap.sourceColorSpace = Bt709(RefHost::kTransferLinear, 1000);
  toneMap.destinationColorSpace = Bt709(RefHost::kTransferSRGB, 0);
  toneMap.controls.peak = kPeak;
  toneMap.knee = 0.5F;
  toneMap.algorithmType = ToneMapAlgorithmType::HuePreservationDesaturation;

  const PX::VideoFrameRef source = MakeFrame(toneMap.sourceColorSpace);
  PX::VideoFrameRef destination = MakeFrame(toneMap.destinationColorSpace);
  SetGrey(PixelsOf(source), kPeak, 0.25F);
  SetGrey(PixelsOf(source) + 4, 0.18F, 1.0F);

  const int result = Quillon::ApplyGamutMapping(source, settings, destination);
  if (result != 0) {
    std::printf("the engine refused with 0x%08X\n", static_cast<unsigned>(result));
    return 1;
  }
  // The source's peak becomes the destination's; what lies below the knee keeps its light.
  const float* mapped = PixelsOf(destination);
  const float greyCard = 1.055F * std::pow(0.18F, 1.0F / 2.4F) - 0.055F;
  return IsGrey(mapped, 1.0F, 0.25F) && IsGrey(mapped + 4, greyCard, 1.0F) ? 0 : 1;
}
