// A whole call in place on a 4K linear float frame, for every algorithm, beside the machine's own
// floor: reading and writing the same memory once, in the same run and on as many threads.

#include <algorithm>
#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/parallel_for.h>

#include "bench/CurveCases.h"
#include "bench/Frames.h"
#include "bench/Timing.h"
#include "engine/Quillon.h"
#include "refhost/orvmediatypes/H273.h"

namespace {

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::GamutCompressionAlgorithmType;
using orvmediatypes::color::ToneMapAlgorithmType;
using PX::GamutMappingUtils::GamutMappingSettings;

constexpr int kSourceNits = 1000;
constexpr int kWhiteNits = 203;

struct Algorithm {
  const char* name;
  ToneMapAlgorithmType toneMap;
  GamutCompressionAlgorithmType gamut = GamutCompressionAlgorithmType::None;
};

constexpr Algorithm kAlgorithms[] = {
    {"hue-preserving", ToneMapAlgorithmType::HuePreservationDesaturation},
    {"car", ToneMapAlgorithmType::CARToneCurve},
    {"bt2390-channel", ToneMapAlgorithmType::ITU2390RGBByChannel},
    {"bt2390-max", ToneMapAlgorithmType::ITU2390MaxRGB},
    {"bt2446a", ToneMapAlgorithmType::ITU2446A},
    {"reinhard+hue-preserving", ToneMapAlgorithmType::HuePreservationDesaturation,
     GamutCompressionAlgorithmType::Reinhard}};

bool IsBt2390(ToneMapAlgorithmType algorithm) {
  return algorithm == ToneMapAlgorithmType::ITU2390MaxRGB ||
         algorithm == ToneMapAlgorithmType::ITU2390RGBByChannel;
}

/// BT.2020 to BT.709, so that gamut compression applies. BT.2390 takes the peak from full scale of
/// the source, and so needs PQ for one.
GamutMappingSettings SettingsOf(const Algorithm& algorithm) {
  GamutMappingSettings settings;
  auto& toneMap = settings.toneMapSettings;
  const bool needsPQ = IsBt2390(algorithm.toneMap);
  toneMap.sourceColorSpace =
      Bt2020(needsPQ ? RefHost::kTransferPQ : RefHost::kTransferLinear, kSourceNits);
  toneMap.destinationColorSpace = Bt709(RefHost::kTransferLinear, kWhiteNits);
  toneMap.controls.peak = needsPQ ? 0.7518F : static_cast<float>(kSourceNits) / kWhiteNits;
  toneMap.algorithmType = algorithm.toneMap;
  settings.GamutCompressionSettings::algorithmType = algorithm.gamut;
  return settings;
}

void ReadAndWriteInParallel(std::span<float> floats) {
  tbb::parallel_for(
      tbb::blocked_range<std::size_t>(0, floats.size()),
      [floats](const tbb::blocked_range<std::size_t>& range) {
        ReadAndWrite(floats.subspan(range.begin(), range.size()));
      },
      tbb::static_partitioner());
}

void MapInPlace(benchmark::State& state, const Algorithm& algorithm, std::size_t threadCount) {
  const tbb::global_control threads(tbb::global_control::max_allowed_parallelism, threadCount);
  const GamutMappingSettings settings = SettingsOf(algorithm);
  const ColorSpace linear = Bt709(RefHost::kTransferLinear, kWhiteNits);
  const std::vector<float> picture = MakePicture(Picture::Hdr);
  const PX::VideoFrameRef frame = Make4kFrame(orvmediatypes::kLinearFloatBGRA, linear);
  const std::span<float> floats = FloatsOf(frame);

  std::vector<double> calls;
  std::vector<double> floors;
  while (state.KeepRunning()) {
    std::copy(picture.begin(), picture.end(), floats.begin());
    frame->SetColorSpace(linear);
    PX::VideoFrameRef destination = frame;
    int result = 0;
    calls.push_back(
        SecondsOf([&] { result = Quillon::ApplyGamutMapping(frame, settings, destination); }));
    Check(result, "ApplyGamutMapping");
    if (std::equal(picture.begin(), picture.end(), floats.begin())) {
      throw std::runtime_error(std::string(algorithm.name) + " changed nothing");
    }
    floors.push_back(SecondsOf([&] { ReadAndWriteInParallel(floats); }));
    state.SetIterationTime(calls.back());
  }
  ReportRatios(state, calls, floors);
}

[[maybe_unused]] const int kRegistered = [] {
  for (const Algorithm& algorithm : kAlgorithms) {
    for (const std::size_t threads : {1U, 2U}) {
      benchmark::RegisterBenchmark(
          ("frame/" + std::string(algorithm.name) + "/threads:" + std::to_string(threads)).c_str(),
          [algorithm, threads](benchmark::State& state) { MapInPlace(state, algorithm, threads); })
          ->Iterations(15)
          ->UseManualTime()
          ->Unit(benchmark::kMillisecond);
    }
  }
  return 0;
}();

}  // namespace
