#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>

#include "bench/quality/Contestants.h"
#include "mapper/Plan.h"

namespace Quality {

namespace {

namespace Mapper = Quillon::Mapper;
using Mapper::GamutAlgorithm;
using Mapper::Settings;

/// To measure another setting, add a line. The algorithm is set besides.
const std::vector<Mapper::Named<Settings>>& NamedSettings() {
  static const std::vector<Mapper::Named<Settings>> kSettings = {
      {"default", {}},
      {"preserve 0", {.colorPreservation = 0.0F}},
      {"preserve 0.5", {.colorPreservation = 0.5F}},
      {"preserve 0.8", {.colorPreservation = 0.8F}},
      {"preserve 1", {.colorPreservation = 1.0F}},
      {"gamut desaturate", {.gamut = GamutAlgorithm::Desaturation}},
      {"gamut reinhard", {.gamut = GamutAlgorithm::Reinhard}},
      {"preserve 0.8, gamut desaturate",
       {.gamut = GamutAlgorithm::Desaturation, .colorPreservation = 0.8F}},
  };
  return kSettings;
}

using Bgra = std::array<float, 4>;

std::vector<Signal> Map(Settings settings, const std::vector<Signal>& pixels, double peakNits) {
  settings.white = static_cast<int>(kWhiteNits);
  const auto plan =
      Mapper::Plan::Make({*Mapper::ColorSpaceOfName("bt2100-pq"), {}},
                         {*Mapper::ColorSpaceOfName("bt709"), {}}, settings, {peakNits, "given"});
  if (!plan) throw std::runtime_error(plan.error().message);

  std::vector<Bgra> picture(pixels.size());
  std::transform(pixels.begin(), pixels.end(), picture.begin(), [](const Signal& pixel) {
    return Bgra{static_cast<float>(pixel.blue), static_cast<float>(pixel.green),
                static_cast<float>(pixel.red), 1.0F};
  });
  std::vector<Bgra> mapped(pixels.size());
  // One pixel a row: any number of them is a picture.
  const int height = static_cast<int>(pixels.size());
  constexpr int kRowBytes = sizeof(Bgra);
  const Mapper::ConstPicture from{.format = Mapper::kBGRAFloat,
                                  .width = 1,
                                  .height = height,
                                  .planes = {picture.data()},
                                  .rowBytes = {kRowBytes}};
  const Mapper::Picture to{.format = Mapper::kBGRAFloat,
                           .width = 1,
                           .height = height,
                           .planes = {mapped.data()},
                           .rowBytes = {kRowBytes}};
  if (const auto failure = plan->Map(from, to)) throw std::runtime_error(failure->message);

  std::vector<Signal> result(pixels.size());
  std::transform(mapped.begin(), mapped.end(), result.begin(), [](const Bgra& pixel) {
    const auto clamp = [](float code) { return std::clamp(static_cast<double>(code), 0.0, 1.0); };
    return Signal{clamp(pixel[2]), clamp(pixel[1]), clamp(pixel[0])};
  });
  return result;
}

}  // namespace

std::vector<Contestant> QuillonContestants() {
  std::vector<Contestant> contestants;
  for (const auto& algorithm : Mapper::Algorithms()) {
    for (const auto& named : NamedSettings()) {
      Settings settings = named.value;
      settings.algorithm = algorithm.value;
      contestants.push_back({"quillon " + std::string(algorithm.name), std::string(named.name),
                             [settings](const std::vector<Signal>& pixels, double peakNits) {
                               return Map(settings, pixels, peakNits);
                             }});
    }
  }
  return contestants;
}

}  // namespace Quality
