#include "bench/CurveCases.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>

#include "bench/Frames.h"
#include "tonemap/Bt2390.h"
#include "tonemap/Bt2446A.h"
#include "tonemap/CarToneCurve.h"
#include "tonemap/HuePreservation.h"

using Quillon::SupportVector;

namespace {

constexpr float kKnee = 0.5F;
constexpr float kSourcePeak = 5.0F;

/// One number for each knot of a coarse grid, and smoothly between the knots.
class SmoothField {
 public:
  explicit SmoothField(unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<float> normal;
    for (float& knot : knots_) knot = normal(random);
  }

  float At(int x, int y) const {
    const float u = static_cast<float>(x) / kSpacing;
    const float v = static_cast<float>(y) / kSpacing;
    const auto column = static_cast<std::size_t>(u);
    const auto row = static_cast<std::size_t>(v);
    const float right = u - static_cast<float>(column);
    const float below = v - static_cast<float>(row);
    const float* knot = &knots_[row * kColumns + column];
    return std::lerp(std::lerp(knot[0], knot[1], right),
                     std::lerp(knot[kColumns], knot[kColumns + 1], right), below);
  }

 private:
  static constexpr int kSpacing = 64;
  static constexpr std::size_t kColumns = kWidth / kSpacing + 2;
  std::vector<float> knots_ = std::vector<float>(kColumns * (kHeight / kSpacing + 2));
};

/// Scales the picture so that three pixels in ten have a channel above the knee.
void PlaceAboveKnee(std::vector<float>& picture) {
  std::vector<float> largest;
  for (std::size_t i = 0; i < picture.size(); i += 4) {
    largest.push_back(std::max({picture[i], picture[i + 1], picture[i + 2]}));
  }
  const auto place = largest.begin() + static_cast<std::ptrdiff_t>(largest.size() * 7 / 10);
  std::nth_element(largest.begin(), place, largest.end());
  const float scale = kKnee / *place;
  for (std::size_t i = 0; i < picture.size(); ++i) picture[i] *= i % 4 == 3 ? 1.0F : scale;
}

}  // namespace

std::vector<float> MakePicture(Picture kind) {
  const SmoothField light(1);
  const SmoothField warmth(2);
  const SmoothField tint(3);
  std::mt19937 random(4);
  std::uniform_int_distribution<int> twenty(0, 19);
  std::vector<float> picture;
  picture.reserve(static_cast<std::size_t>(kWidth) * kHeight * 4);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const float grey = std::exp(1.5F * light.At(x, y));
      const float warm = 0.5F * warmth.At(x, y);
      picture.insert(picture.end(), {grey * std::exp(-warm), grey * std::exp(0.3F * tint.At(x, y)),
                                     grey * std::exp(warm), 1.0F});
    }
  }
  PlaceAboveKnee(picture);
  if (kind == Picture::NegativeChannels) {
    for (std::size_t i = 0; i < picture.size(); i += 4) {
      if (twenty(random) == 0) picture[i + random() % 3] *= -0.1F;
    }
  }
  return picture;
}

std::vector<CurveCase> CurveCases() {
  PX::GamutMappingUtils::GamutMappingSettings settings;
  settings.toneMapSettings.controls.peak = kSourcePeak;
  auto inNits = settings;
  inNits.toneMapSettings.controls.peak = 1000.0F;

  const SupportVector reinhard = {2.0F};
  const SupportVector weights = {0.2126F, 0.7152F, 0.0722F};
  const SupportVector hue = {kSourcePeak, kKnee, 1.0F};
  const SupportVector car = {kKnee, 1.4F, 0.7F, 1.0F, 0.2126F, 0.7152F, 0.0722F};
  const SupportVector bt2446a = {13.26171F, 7.098651F, 0.3945F, 1.0F};
  // 1000 to 203 nits; the highlights from the picture's knee on.
  const SupportVector bt2390 = {0.0F,       0.751827F,  0.0F,  0.5806888F, 203.0F,  0.751827F, 0.0F,
                                0.7723702F, 0.6585553F, kKnee, 0.2126F,    0.7152F, 0.0722F};
  using Quillon::Bt2390Form;
  const Quillon::Bt2390MaxRGBToneMap maxRGB{MakeBt2390Tables(Bt2390Form::MaxRGB, bt2390)};
  const Quillon::Bt2390RGBByChannelToneMap byChannel{
      MakeBt2390Tables(Bt2390Form::ByChannel, bt2390)};
  return {
      {"gamut-desaturation", {}, Quillon::GamutCompressionDesaturation{}, {}, weights, settings},
      {"gamut-reinhard", {}, Quillon::GamutCompressionReinhard{}, {}, reinhard, settings},
      {"hue-preserving", Quillon::HuePreservationToneMap{}, {}, hue, {}, settings},
      {"car", Quillon::CARToneMap{}, {}, car, {}, settings},
      {"bt2390-channel", byChannel, {}, bt2390, {}, settings},
      {"bt2390-max", maxRGB, {}, bt2390, {}, settings},
      {"bt2446a", Quillon::Bt2446AToneMap{}, {}, bt2446a, {}, inNits},
      {"reinhard+hue-preserving", Quillon::HuePreservationToneMap{},
       Quillon::GamutCompressionReinhard{}, hue, reinhard, settings},
  };
}
