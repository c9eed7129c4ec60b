#include "bench/quality/Light.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>

#include "curves/SdrTransfer.h"
#include "curves/St2084.h"
#include "refhost/chromant/Primaries.h"
#include "refhost/orvmediatypes/H273.h"

namespace Quality {

namespace {

using orvmediatypes::color::Chromaticities;
using RefHost::Matrix3;

constexpr double kDegrees = 180.0 / std::numbers::pi;
/// Share of a colour's largest component that counts as 0.
constexpr double kRounding = 1e-9;

Chromaticities ChromaticitiesOf(Gamut gamut) {
  orvmediatypes::color::ColorDescription description;
  description.primaries = gamut == Gamut::BT709 ? RefHost::kPrimariesBT709
                          : gamut == Gamut::P3  ? RefHost::kPrimariesP3D65
                                                : RefHost::kPrimariesBT2020;
  // NOLINTNEXTLINE(bugprone-unchecked-optional-access): it knows these three
  return *RefHost::ChromaticitiesOf(orvmediatypes::color::ColorSpace(description));
}

Components Multiply(const Matrix3& m, const Components& v) {
  return {m[0] * v[0] + m[1] * v[1] + m[2] * v[2], m[3] * v[0] + m[4] * v[1] + m[5] * v[2],
          m[6] * v[0] + m[7] * v[1] + m[8] * v[2]};
}

Matrix3 Inverse(const Matrix3& m) {
  const auto minor = [&m](std::size_t a, std::size_t b, std::size_t c, std::size_t d) {
    return m[a] * m[d] - m[b] * m[c];
  };
  const double determinant =
      m[0] * minor(4, 5, 7, 8) - m[1] * minor(3, 5, 6, 8) + m[2] * minor(3, 4, 6, 7);
  Matrix3 inverse = {minor(4, 5, 7, 8),  -minor(1, 2, 7, 8), minor(1, 2, 4, 5),
                     -minor(3, 5, 6, 8), minor(0, 2, 6, 8),  -minor(0, 2, 3, 5),
                     minor(3, 4, 6, 7),  -minor(0, 1, 6, 7), minor(0, 1, 3, 4)};
  for (double& value : inverse) value /= determinant;
  return inverse;
}

/// Matrices from a gamut to BT.2020 and back, made once.
struct Conversion {
  Matrix3 to;
  Matrix3 from;
};

const Conversion& ConversionOf(Gamut gamut) {
  static const std::array<Conversion, 3> kConversions = [] {
    std::array<Conversion, 3> conversions{};
    const Chromaticities bt2020 = ChromaticitiesOf(Gamut::BT2020);
    for (const Gamut each : {Gamut::BT709, Gamut::P3, Gamut::BT2020}) {
      const Chromaticities own = ChromaticitiesOf(each);
      conversions[static_cast<std::size_t>(each)] = {RefHost::RgbToRgb(own, bt2020),
                                                     RefHost::RgbToRgb(bt2020, own)};
    }
    return conversions;
  }();
  return kConversions[static_cast<std::size_t>(gamut)];
}

}  // namespace

Components ComponentsIn(Gamut gamut, const Light& light) {
  return Multiply(ConversionOf(gamut).from, {light.red, light.green, light.blue});
}

Light LightFrom(Gamut gamut, const Components& components) {
  const Components light = Multiply(ConversionOf(gamut).to, components);
  return {light[0], light[1], light[2]};
}

bool IsInside(Gamut gamut, const Light& light) {
  const Components components = ComponentsIn(gamut, light);
  const auto [least, largest] = std::minmax_element(components.begin(), components.end());
  return *least >= -kRounding * *largest;
}

Light LightOfxyY(double x, double y, double nits) {
  static const Matrix3 kFromXyz = Inverse(RefHost::RgbToXyz(ChromaticitiesOf(Gamut::BT2020)));
  const Components light = Multiply(kFromXyz, {x / y * nits, nits, (1.0 - x - y) / y * nits});
  return {light[0], light[1], light[2]};
}

Signal EncodePQ(const Light& light) {
  return {EncodeSt2084(light.red), EncodeSt2084(light.green), EncodeSt2084(light.blue)};
}

Light ShownBy(const Signal& signal) {
  const auto decode = [](double code) { return kWhiteNits * DecodeSrgb(code); };
  return LightFrom(Gamut::BT709, {decode(signal.red), decode(signal.green), decode(signal.blue)});
}

double GreyCode(double nits) { return 255.0 * EncodeSrgb(nits / kWhiteNits); }

ICtCp ItpOf(const Light& light) {
  return Quillon::Cli::ICtCpOfNits(light.red, light.green, light.blue);
}

Polar PolarOf(const ICtCp& color) {
  const double t = 0.5 * color.ct;
  return {color.i, std::hypot(t, color.cp), std::atan2(color.cp, t) * kDegrees};
}

Polar PolarOf(const Light& light) { return PolarOf(ItpOf(light)); }

Light LightOf(const Polar& color) {
  // ITU-R BT.2100-2, table 7, turned round; in 4096ths.
  static const Matrix3 kToLms =
      Inverse({0.5, 0.5, 0.0, 6610.0 / 4096.0, -13613.0 / 4096.0, 7003.0 / 4096.0, 17933.0 / 4096.0,
               -17390.0 / 4096.0, -543.0 / 4096.0});
  static const Matrix3 kFromLms =
      Inverse({1688.0 / 4096.0, 2146.0 / 4096.0, 262.0 / 4096.0, 683.0 / 4096.0, 2951.0 / 4096.0,
               462.0 / 4096.0, 99.0 / 4096.0, 309.0 / 4096.0, 3688.0 / 4096.0});
  const double angle = color.hue / kDegrees;
  Components lms = Multiply(kToLms, {color.intensity, 2.0 * color.chroma * std::cos(angle),
                                     color.chroma * std::sin(angle)});
  for (double& value : lms) value = DecodeSt2084(value);
  const Components light = Multiply(kFromLms, lms);
  return {light[0], light[1], light[2]};
}

double BoundaryChroma(Gamut gamut, double intensity, double hue, double peakNits) {
  const auto fits = [&](double chroma) {
    const Light light = LightOf({intensity, chroma, hue});
    return IsInside(gamut, light) && IsInside(Gamut::BT2020, light) &&
           std::max({light.red, light.green, light.blue}) <= peakNits * (1.0 + kRounding);
  };
  // The first exit on the way out from grey, in steps and then by halves.
  constexpr double kStep = 0.005;
  constexpr int kHalvings = 30;
  double inside = 0.0;
  while (fits(inside + kStep)) inside += kStep;
  double width = kStep;
  for (int i = 0; i < kHalvings; ++i) {
    width /= 2.0;
    if (fits(inside + width)) inside += width;
  }
  return inside;
}

}  // namespace Quality
