#include "bench/gpu/CallBench.h"

#include <array>
#include <utility>

#include "bench/Frames.h"
#include "bench/Timing.h"
#include "engine/Quillon.h"

namespace {

using orvmediatypes::color::GamutCompressionAlgorithmType;
using orvmediatypes::color::ToneMapAlgorithmType;

constexpr std::array<std::pair<ToneMapAlgorithmType, const char*>, 5> kToneMaps = {
    {{ToneMapAlgorithmType::ITU2390MaxRGB, "BT.2390, maximum of RGB"},
     {ToneMapAlgorithmType::ITU2390RGBByChannel, "BT.2390, by channel"},
     {ToneMapAlgorithmType::ITU2446A, "BT.2446 A"},
     {ToneMapAlgorithmType::HuePreservationDesaturation, "hue-preserving"},
     {ToneMapAlgorithmType::CARToneCurve, "CAR"}}};

PX::GamutMappingUtils::GamutMappingSettings SettingsFor(const PX::VideoFrameRef& source,
                                                        const PX::VideoFrameRef& destination,
                                                        ToneMapAlgorithmType algorithm) {
  PX::GamutMappingUtils::GamutMappingSettings settings;
  settings.algorithmType = GamutCompressionAlgorithmType::Reinhard;
  auto& toneMap = settings.toneMapSettings;
  toneMap.sourceColorSpace = source->GetColorSpace();
  toneMap.destinationColorSpace = destination->GetColorSpace();
  toneMap.controls.peak = 0.751827F;
  toneMap.knee = 0.5F;
  toneMap.algorithmType = algorithm;
  return settings;
}

}  // namespace

std::vector<CallTime> TimeCalls(const DeviceRef& device, const Shape& shape) {
  constexpr int kRuns = 15;
  constexpr std::uint8_t kPQ = 16;
  const PX::VideoFrameRef source = MakePicture(device, shape, Bt2020(kPQ, 1000));
  PX::VideoFrameRef destination = MakeOnDevice(device, shape, Bt709(1, 0));
  std::vector<CallTime> times;
  for (const auto& [algorithm, name] : kToneMaps) {
    const auto settings = SettingsFor(source, destination, algorithm);
    const auto call = [&] {
      return SecondsOf([&] {
        Check(Quillon::ApplyGamutMapping(source, settings, destination), "a call");
        Check(device->Finish(), "the device");
      });
    };
    const double first = call();
    std::vector<double> seconds;
    std::vector<double> allocations;
    for (int run = 0; run < kRuns; ++run) {
      seconds.push_back(call());
      allocations.push_back(
          SecondsOf([&] { MakeOnDevice(device, shape, source->GetColorSpace()); }));
    }
    times.push_back({name, shape.Name(), first, Median(seconds), Median(allocations)});
  }
  return times;
}
