// A whole call in place on a 4K linear float frame, beside the machine's own floor: reading and
// writing the same memory once, in the same run and on as many threads.

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include <benchmark/benchmark.h>
#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/parallel_for.h>

#include "bench/Frames.h"
#include "bench/Timing.h"
#include "engine/Quillon.h"
#include "refhost/orvmediatypes/H273.h"

namespace {

using orvmediatypes::color::ToneMapAlgorithmType;
using PX::GamutMappingUtils::GamutMappingSettings;

constexpr int kSourceNits = 1000;
constexpr int kWhiteNits = 203;
constexpr float kSourcePeak = static_cast<float>(kSourceNits) / kWhiteNits;

GamutMappingSettings HuePreservingSettings() {
  GamutMappingSettings settings;
  auto& toneMap = settings.toneMapSettings;
  toneMap.sourceColorSpace = Bt2020(H273::kTransferLinear, kSourceNits);
  toneMap.destinationColorSpace = Bt2020(H273::kTransferLinear, kWhiteNits);
  toneMap.controls.peak = kSourcePeak;
  toneMap.algorithmType = ToneMapAlgorithmType::HuePreservationDesaturation;
  return settings;
}

/// Coloured ramps from black to the source's peak: pixels below, at and above the knee.
std::vector<float> MakePicture() {
  std::vector<float> picture;
  picture.reserve(static_cast<std::size_t>(kWidth) * kHeight * 4);
  for (int y = 0; y < kHeight; ++y) {
    const float tint = static_cast<float>(y) / (kHeight - 1);
    for (int x = 0; x < kWidth; ++x) {
      const float light = kSourcePeak * static_cast<float>(x) / (kWidth - 1);
      picture.insert(picture.end(), {light * tint, light * (1.0F - 0.5F * tint), light, 1.0F});
    }
  }
  return picture;
}

void ReadAndWriteInParallel(std::span<float> floats) {
  tbb::parallel_for(
      tbb::blocked_range<std::size_t>(0, floats.size()),
      [floats](const tbb::blocked_range<std::size_t>& range) {
        ReadAndWrite(floats.subspan(range.begin(), range.size()));
      },
      tbb::static_partitioner());
}

void MapInPlace(benchmark::State& state) {
  const tbb::global_control threads(tbb::global_control::max_allowed_parallelism,
                                    static_cast<std::size_t>(state.range(0)));
  const GamutMappingSettings settings = HuePreservingSettings();
  const std::vector<float> picture = MakePicture();
  const PX::VideoFrameRef frame =
      Make4kFrame(orvmediatypes::kLinearFloatBGRA, settings.toneMapSettings.sourceColorSpace);
  const std::span<float> floats = FloatsOf(frame);

  std::vector<double> calls;
  std::vector<double> floors;
  while (state.KeepRunning()) {
    std::copy(picture.begin(), picture.end(), floats.begin());
    frame->SetColorSpace(settings.toneMapSettings.sourceColorSpace);
    PX::VideoFrameRef destination = frame;
    int result = 0;
    calls.push_back(
        SecondsOf([&] { result = Quillon::ApplyGamutMapping(frame, settings, destination); }));
    Check(result, "ApplyGamutMapping");
    floors.push_back(SecondsOf([&] { ReadAndWriteInParallel(floats); }));
    state.SetIterationTime(calls.back());
  }
  ReportRatios(state, calls, floors);
}

BENCHMARK(MapInPlace)
    ->Name("ApplyGamutMapping/4K/linear-float/hue-preserving")
    ->ArgName("threads")
    ->Arg(1)
    ->Arg(2)
    ->Iterations(15)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
