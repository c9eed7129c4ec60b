#include "mapper/GamutFit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "mapper/rows/FitRuns.h"
#include "refhost/chromant/Primaries.h"
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::Chromaticities;
using orvmediatypes::color::ColorSpace;

namespace Quillon::Mapper {

namespace {

// Of the way to the boundary. Nearer to it the fit would have to be hard; farther from it colours
// that the destination has would pay for those that it has not.
constexpr float kShare = 0.9F;

/// Colours whose smallest and largest channel are both far from the gamut's ends are not looked at.
constexpr float kSafeShareOfTop = 0.8F;

constexpr double kMostNits = 10000.0;

using Light = std::array<float, 3>;  // blue, green, red

struct Itp {
  float i;
  float t;
  float p;
  float Chroma() const { return std::abs(t) + std::abs(p); }
};

/// Rows and columns of red, green and blue, as blue, green and red.
RefHost::Matrix3 Mirrored(const RefHost::Matrix3& m, bool rows, bool columns) {
  RefHost::Matrix3 mirrored{};
  for (std::size_t y = 0; y < 3; ++y) {
    for (std::size_t x = 0; x < 3; ++x) {
      mirrored[y * 3 + x] = m[(rows ? 2 - y : y) * 3 + (columns ? 2 - x : x)];
    }
  }
  return mirrored;
}

RefHost::Matrix3 Product(const RefHost::Matrix3& a, const RefHost::Matrix3& b) {
  RefHost::Matrix3 product{};
  for (std::size_t y = 0; y < 3; ++y) {
    for (std::size_t x = 0; x < 3; ++x) {
      for (std::size_t k = 0; k < 3; ++k) product[y * 3 + x] += a[y * 3 + k] * b[k * 3 + x];
    }
  }
  return product;
}

RefHost::Matrix3 Inverse(const RefHost::Matrix3& m) {
  const auto minor = [&m](std::size_t a, std::size_t b, std::size_t c, std::size_t d) {
    return m[a] * m[d] - m[b] * m[c];
  };
  const RefHost::Matrix3 adjugate = {minor(4, 5, 7, 8), minor(2, 1, 8, 7), minor(1, 2, 4, 5),
                                     minor(5, 3, 8, 6), minor(0, 2, 6, 8), minor(2, 0, 5, 3),
                                     minor(3, 4, 6, 7), minor(1, 0, 7, 6), minor(0, 1, 3, 4)};
  const double determinant = m[0] * adjugate[0] + m[1] * adjugate[3] + m[2] * adjugate[6];
  RefHost::Matrix3 inverse{};
  for (std::size_t k = 0; k < 9; ++k) inverse[k] = adjugate[k] / determinant;
  return inverse;
}

// ITU-R BT.2100-2, table 7, from light of BT.2020.
constexpr RefHost::Matrix3 kLmsOfBt2020 = {1688 / 4096.0, 2146 / 4096.0, 262 / 4096.0,
                                           683 / 4096.0,  2951 / 4096.0, 462 / 4096.0,
                                           99 / 4096.0,   309 / 4096.0,  3688 / 4096.0};

Chromaticities Bt2020() {
  orvmediatypes::color::ColorDescription description;
  description.primaries = RefHost::kPrimariesBT2020;
  // NOLINTNEXTLINE(bugprone-unchecked-optional-access): it knows these
  return *RefHost::ChromaticitiesOf(ColorSpace(description));
}

/// A gamut as the pixel's arithmetic sees it.
class Gamut {
 public:
  Gamut(const Chromaticities& primaries, double peakNits, int white) {
    RefHost::Matrix3 toLms =
        Mirrored(Product(kLmsOfBt2020, RefHost::RgbToRgb(primaries, Bt2020())), false, true);
    for (double& entry : toLms) entry *= white / kMostNits;
    const RefHost::Matrix3 fromLms = Inverse(toLms);
    std::copy(toLms.begin(), toLms.end(), params_.toLms);
    std::copy(fromLms.begin(), fromLms.end(), params_.fromLms);
    params_.top = static_cast<float>(peakNits / white);
    params_.topIntensity = ItpOf({params_.top, params_.top, params_.top}).i;
  }

  GamutFitParams& Params() { return params_; }
  float Top() const { return params_.top; }
  float TopIntensity() const { return params_.topIntensity; }

  Itp ItpOf(const Light& light) const {
    const float l = Encode(0, light);
    const float m = Encode(3, light);
    const float s = Encode(6, light);
    return {0.5F * (l + m), 0.806884765625F * l - 1.6617431640625F * m + 0.8548583984375F * s,
            4.378173828125F * l - 4.24560546875F * m - 0.132568359375F * s};
  }

  Light LightOf(const Itp& itp) const {
    const float tilt = 0.01721807407586551F * itp.t + 0.11102962500302596F * itp.p;
    const float l = DecodeSingleSt2084(itp.i + tilt);
    const float m = DecodeSingleSt2084(itp.i - tilt);
    const float s =
        DecodeSingleSt2084(itp.i + (1.1200626714213582F * itp.t - 0.32062717498731885F * itp.p));
    const float* const rows = params_.fromLms;
    return {RowTimes(rows, l, m, s), RowTimes(rows + 3, l, m, s), RowTimes(rows + 6, l, m, s)};
  }

  /// How far a colour lies within the gamut, below 0 where it lies without.
  float Depth(const Itp& itp) const {
    const Light light = LightOf(itp);
    const auto [least, most] = std::minmax_element(light.begin(), light.end());
    return std::min(*least, params_.top - *most);
  }

 private:
  float Encode(int row, const Light& light) const {
    return EncodeSingleSt2084(RowTimes(params_.toLms + row, light[0], light[1], light[2]));
  }

  GamutFitParams params_{};
};

/// The colours of a gamut that have one channel at the top and one at 0, as HueOfFit orders them.
std::vector<Itp> Cusps(const Gamut& gamut, float top) {
  constexpr int kSteps = 256;
  std::vector<Itp> cusps;
  for (std::size_t lit = 0; lit < 3; ++lit) {
    for (const std::size_t rising : {(lit + 1) % 3, (lit + 2) % 3}) {
      for (int step = 0; step <= kSteps; ++step) {
        Light light{};
        light[lit] = top;
        light[rising] = top * static_cast<float>(step) / kSteps;
        cusps.push_back(gamut.ItpOf(light));
      }
    }
  }
  std::sort(cusps.begin(), cusps.end(),
            [](const Itp& a, const Itp& b) { return HueOfFit(a.t, a.p) < HueOfFit(b.t, b.p); });
  return cusps;
}

float IntensityOfCusp(const std::vector<Itp>& cusps, float hue) {
  const auto above = std::find_if(cusps.begin(), cusps.end(), [hue](const Itp& cusp) {
    return HueOfFit(cusp.t, cusp.p) >= hue;
  });
  const Itp& to = above == cusps.end() ? cusps.front() : *above;
  const Itp& from = above == cusps.begin() || above == cusps.end() ? cusps.back() : *(above - 1);
  const float turn = 4.0F;
  const float toHue = HueOfFit(to.t, to.p) + (above == cusps.end() ? turn : 0.0F);
  const float fromHue = HueOfFit(from.t, from.p) - (above == cusps.begin() ? turn : 0.0F);
  const float way = toHue > fromHue ? (hue - fromHue) / (toHue - fromHue) : 0.0F;
  return from.i + way * (to.i - from.i);
}

/// T and P of one unit of chroma.
Itp DirectionOf(float hue) {
  const float slope = hue > 1.0F ? 2.0F - hue : hue;
  const float t = 1.0F - std::abs(slope);
  return {0.0F, hue > 1.0F ? -t : t, slope};
}

Itp At(float intensity, const Itp& direction, float chroma) {
  return {intensity, chroma * direction.t, chroma * direction.p};
}

/// Where the gamut ends along a direction, by false position. `guess` is near it, or 0.
float ChromaOfBoundary(const Gamut& gamut, float intensity, const Itp& direction, float guess) {
  const auto depthAt = [&](float chroma) { return gamut.Depth(At(intensity, direction, chroma)); };
  float within = 0.0F;
  float depthWithin = depthAt(within);
  float without = guess > 0.0F ? 1.25F * guess : 1.0F;
  float depthWithout = depthAt(without);
  while (depthWithout >= 0.0F && without < 1.0F) {
    without *= 2.0F;
    depthWithout = depthAt(without);
  }
  constexpr int kMostSteps = 24;
  constexpr float kNear = 1e-4F;
  for (int step = 0; step < kMostSteps && without - within > kNear * without; ++step) {
    const float chroma = within + (without - within) * depthWithin / (depthWithin - depthWithout);
    const float depth = depthAt(chroma);
    // Illinois: the end that stays counts for half, so that both come nearer.
    if (depth >= 0.0F) {
      within = chroma;
      depthWithin = depth;
      depthWithout *= 0.5F;
    } else {
      without = chroma;
      depthWithout = depth;
      depthWithin *= 0.5F;
    }
  }
  return within;
}

float HueOfColumn(int column) {
  return 4.0F * static_cast<float>(column) / QUILLON_FIT_HUES - 1.0F;
}

float IntensityOfRow(int row, float cusp, float top) {
  const float place = static_cast<float>(row) / QUILLON_FIT_STEPS;
  return place <= 1.0F ? place * cusp : top - (2.0F - place) * (top - cusp);
}

std::vector<float> MakeTable(const Gamut& gamut) {
  const std::vector<Itp> cusps = Cusps(gamut, gamut.Top());
  constexpr std::size_t kColumns = QUILLON_FIT_COLUMNS;
  std::vector<float> table(kColumns * (QUILLON_FIT_ROWS + 1));
  for (int column = 0; column < QUILLON_FIT_COLUMNS; ++column) {
    const float hue = HueOfColumn(column % QUILLON_FIT_HUES);
    const float cusp = IntensityOfCusp(cusps, hue);
    auto entry = table.begin() + column;
    *entry = cusp;
    float chroma = 0.0F;
    for (int row = 0; row < QUILLON_FIT_ROWS; ++row) {
      entry += kColumns;
      const bool isEnd = row == 0 || row == QUILLON_FIT_ROWS - 1;
      const float intensity = IntensityOfRow(row, cusp, gamut.TopIntensity());
      if (!isEnd) chroma = ChromaOfBoundary(gamut, intensity, DirectionOf(hue), chroma);
      *entry = isEnd ? 0.0F : chroma;
    }
  }
  return table;
}

/// How far the source's colours reach, as a multiple of the boundary's chroma.
float ReachOf(const Gamut& source, const GamutFit& fit) {
  float reach = 1.0F;
  for (const Itp& color : Cusps(source, 0.5F * source.Top())) {
    const float boundary = BoundaryChroma(fit.table.data(), fit.params.topIntensity,
                                          HueOfFit(color.t, color.p), color.i);
    reach = std::max(reach, color.Chroma() / boundary);
  }
  constexpr float kFarthest = 4.0F;
  return std::min(reach, kFarthest);
}

/// The largest ratio of a pixel's smallest channel to its largest at the share of the boundary,
/// where the largest is not near the top.
float SafeRatio(const Gamut& gamut, const GamutFit& fit) {
  float ratio = 0.0F;
  for (int column = 0; column < QUILLON_FIT_HUES; ++column) {
    const Itp direction = DirectionOf(HueOfColumn(column));
    for (int row = 1; row < QUILLON_FIT_ROWS - 1; ++row) {
      const float intensity =
          IntensityOfRow(row, fit.table[static_cast<std::size_t>(column)], gamut.TopIntensity());
      const auto entry = static_cast<std::size_t>(row + 1) * QUILLON_FIT_COLUMNS +
                         static_cast<std::size_t>(column);
      const Light light = gamut.LightOf(At(intensity, direction, kShare * fit.table[entry]));
      const auto [least, most] = std::minmax_element(light.begin(), light.end());
      if (*most < kSafeShareOfTop * gamut.Top()) ratio = std::max(ratio, *least / *most);
    }
  }
  constexpr float kMargin = 1.1F;  // for what lies between the entries
  return std::min(kMargin * ratio, 1.0F);
}

bool ReachesBeyond(const Chromaticities& source, const Chromaticities& destination) {
  const RefHost::Matrix3 matrix = RefHost::RgbToRgb(source, destination);
  constexpr double kRounding = 1e-4;  // of coordinates in files
  return *std::min_element(matrix.begin(), matrix.end()) < -kRounding;
}

}  // namespace

bool ReachesBeyond(const ColorSpace& source, const ColorSpace& destination) {
  const auto from = RefHost::ChromaticitiesOf(source);
  const auto to = RefHost::ChromaticitiesOf(destination);
  return from && to && ReachesBeyond(*from, *to);
}

std::shared_ptr<const GamutFit> MakeGamutFit(const ColorSpace& destination, double peakNits,
                                             int white) {
  const auto to = RefHost::ChromaticitiesOf(destination);
  if (!to) return nullptr;
  Gamut gamut(*to, peakNits, white);
  auto fit = std::make_shared<GamutFit>();
  fit->table = MakeTable(gamut);
  fit->params = gamut.Params();
  fit->params.share = kShare;
  const float farthest =
      (ReachOf(Gamut(Bt2020(), peakNits, white), *fit) - kShare) / (1.0F - kShare);
  fit->params.bend = farthest > 1.0F ? 1.0F - 1.0F / farthest : 0.0F;
  fit->params.safeRatio = SafeRatio(gamut, *fit);
  fit->params.safeLight = kSafeShareOfTop * gamut.Top();
  return fit;
}

void FitPixels(InstructionSet set, const GamutFit& fit, float* pixels, std::size_t count) {
#if defined(__x86_64__)
  if (set == InstructionSet::Avx512) {
    return FitRunAvx512(fit.params, fit.table.data(), pixels, count);
  }
  if (set == InstructionSet::Avx2) return FitRunAvx2(fit.params, fit.table.data(), pixels, count);
#else
  static_cast<void>(set);
#endif
  FitRunBaseline(fit.params, fit.table.data(), pixels, count);
}

}  // namespace Quillon::Mapper
