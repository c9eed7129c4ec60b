// Every curve over a 4K picture on one thread: as a function called for each pixel, and as rows on
// each instruction set, beside the floor of the same run.

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/CurveCases.h"
#include "bench/Frames.h"
#include "bench/Timing.h"
#include "cpu/rows/RowForms.h"

namespace {

using Quillon::InstructionSet;

/// ns a pixel of the forms that ran, by curve and picture.
std::map<std::string, double>& PixelForms() {
  static std::map<std::string, double> kForms;
  return kForms;
}

const std::vector<float>& CachedPicture(Picture kind) {
  static std::map<Picture, std::vector<float>> kPictures;
  std::vector<float>& picture = kPictures[kind];
  if (picture.empty()) picture = MakePicture(kind);
  return picture;
}

void MapPixelByPixel(const CurveCase& curve, std::vector<float>& pixels) {
  for (std::size_t i = 0; i < pixels.size(); i += 4) {
    if (curve.compressGamut) curve.compressGamut(&pixels[i], curve.gamutParams, curve.settings);
    if (curve.toneMap) {
      curve.toneMap(&pixels[i], curve.toneMapParams, curve.settings.toneMapSettings);
    }
  }
}

void MapAsRows(const CurveCase& curve, InstructionSet set, std::vector<float>& pixels) {
  const bool isMapped = MapRows(
      set,
      {curve.toneMap, curve.compressGamut, curve.toneMapParams, curve.gamutParams, curve.settings},
      pixels.data(), kHeight, kWidth);
  if (!isMapped) throw std::runtime_error(curve.name + " has no row form");
}

/// Times `map` on fresh copies of the picture, each beside the floor on the same memory.
template <class Map>
double Measure(benchmark::State& state, Picture kind, const Map& map) {
  const std::vector<float>& picture = CachedPicture(kind);
  static std::vector<float> pixels;
  pixels.resize(picture.size());
  std::vector<double> calls;
  std::vector<double> floors;
  while (state.KeepRunning()) {
    std::copy(picture.begin(), picture.end(), pixels.begin());
    calls.push_back(SecondsOf([&] { map(pixels); }));
    std::copy(picture.begin(), picture.end(), pixels.begin());
    floors.push_back(SecondsOf([&] { ReadAndWrite(pixels); }));
    state.SetIterationTime(calls.back());
  }
  return ReportRatios(state, calls, floors);
}

void PixelForm(benchmark::State& state, const CurveCase& curve, Picture kind,
               const std::string& key) {
  PixelForms()[key] =
      Measure(state, kind, [&](std::vector<float>& pixels) { MapPixelByPixel(curve, pixels); });
}

void RowForm(benchmark::State& state, const CurveCase& curve, Picture kind, const std::string& key,
             InstructionSet set) {
  const double nanoseconds =
      Measure(state, kind, [&](std::vector<float>& pixels) { MapAsRows(curve, set, pixels); });
  const auto pixelForm = PixelForms().find(key);
  if (pixelForm != PixelForms().end()) {
    state.counters["to_pixel_form"] = nanoseconds / pixelForm->second;
  }
}

template <class Function>
void Register(const std::string& name, int iterations, const Function& function) {
  benchmark::RegisterBenchmark(name.c_str(), function)
      ->Iterations(iterations)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

int RegisterAll() {
  const struct {
    const char* name;
    Picture kind;
  } kPictures[] = {{"hdr", Picture::Hdr}, {"negative", Picture::NegativeChannels}};
  const struct {
    const char* name;
    InstructionSet set;
  } kSets[] = {{"baseline", InstructionSet::Baseline},
               {"avx2", InstructionSet::Avx2},
               {"avx512", InstructionSet::Avx512}};
  for (const CurveCase& curve : CurveCases()) {
    for (const auto& picture : kPictures) {
      const std::string key = "curve/" + curve.name + '/' + picture.name;
      Register(key + "/pixel", 3, [curve, kind = picture.kind, key](benchmark::State& state) {
        PixelForm(state, curve, kind, key);
      });
      for (const auto& set : kSets) {
        if (!Quillon::CanRun(set.set)) continue;
        Register(key + "/rows-" + set.name, 15,
                 [curve, kind = picture.kind, key, set = set.set](benchmark::State& state) {
                   RowForm(state, curve, kind, key, set);
                 });
      }
    }
  }
  return 0;
}

[[maybe_unused]] const int kRegistered = RegisterAll();

}  // namespace
