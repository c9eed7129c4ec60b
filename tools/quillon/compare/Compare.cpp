#include "tools/quillon/compare/Compare.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>

#include "curves/St2084.h"
#include "host/chromant/Conversion.h"
#include "refhost/orvcore/Bands.h"
#include "tools/quillon/picture/DeltaEItp.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/PictureLight.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

namespace {

constexpr int kBandRows = 16;
constexpr int kLuminanceAside = 2;  // colour spaces that differ in luminance metadata alone match

std::string SizeOf(const PX::VideoFrameRef& frame) {
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  return std::to_string(bounds.width) + 'x' + std::to_string(bounds.height);
}

void RequireSameSize(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b) {
  if (SizeOf(a) == SizeOf(b)) return;
  throw CommandError(ExitCode::NotSupported, "the pictures differ in size: A is " + SizeOf(a) +
                                                 " and B is " + SizeOf(b) +
                                                 "; only pictures of one size can be compared");
}

/// What is summed up over pixels, in the order of rows.
struct Sums {
  std::int64_t pixels = 0;
  double deltaE = 0.0;
  double pqSquares = 0.0;
  double ownSquares = 0.0;

  Sums& operator+=(const Sums& other) {
    pixels += other.pixels;
    deltaE += other.deltaE;
    pqSquares += other.pqSquares;
    ownSquares += other.ownSquares;
    return *this;
  }
};

/// A pixel's colour as the figures take it.
struct PixelColor {
  ICtCp ictcp;
  std::array<double, 3> pq;  // blue, green, red
};

PixelColor ColorOf(const float* bgra, double white) {
  PixelColor color{};
  color.ictcp = ICtCpOfNits(bgra[2] * white, bgra[1] * white, bgra[0] * white);
  for (std::size_t c = 0; c < 3; ++c) color.pq[c] = EncodeSt2084(bgra[c] * white);
  return color;
}

template <class Samples>
double SquaredDistance(const Samples& a, const Samples& b) {
  double sum = 0.0;
  for (std::size_t c = 0; c < 3; ++c) {
    const double difference = double{a[c]} - double{b[c]};
    sum += difference * difference;
  }
  return sum;
}

/// Both pictures, and what is found out of a row of them.
class RowComparer {
 public:
  RowComparer(const PictureLight& a, const PictureLight& b, int white, Comparison& result)
      : signalA_(ViewFloatPixels(a.signal)),
        signalB_(ViewFloatPixels(b.signal)),
        lightA_(ViewFloatPixels(a.light)),
        lightB_(ViewFloatPixels(b.light)),
        white_(white),
        result_(result) {}

  Sums CompareRow(int y) const {
    Sums sums;
    const std::ptrdiff_t first = std::ptrdiff_t{y} * signalA_.width;
    for (std::ptrdiff_t x = 0; x < signalA_.width; ++x) {
      if (((result_.marksA.marks[first + x] | result_.marksB.marks[first + x]) & kNotFinite) == 0) {
        sums += ComparePixel(y, x, result_.deltaE[first + x]);
      }
    }
    return sums;
  }

 private:
  Sums ComparePixel(int y, std::ptrdiff_t x, float& deltaE) const {
    const PixelColor a = ColorOf(lightA_.Row(y) + 4 * x, white_);
    const PixelColor b = ColorOf(lightB_.Row(y) + 4 * x, white_);
    deltaE = static_cast<float>(DeltaEItp(a.ictcp, b.ictcp));
    return {1, deltaE, SquaredDistance(a.pq, b.pq),
            SquaredDistance(signalA_.Row(y) + 4 * x, signalB_.Row(y) + 4 * x)};
  }

  FloatPixels signalA_;
  FloatPixels signalB_;
  FloatPixels lightA_;
  FloatPixels lightB_;
  double white_;
  Comparison& result_;
};

Sums CompareRows(const PictureLight& a, const PictureLight& b, int white, Comparison& result) {
  const RowComparer comparer(a, b, white, result);
  std::vector<Sums> rows(result.height);
  RefHost::RunInBands(result.height, kBandRows, [&](int first, int last) {
    for (int y = first; y < last; ++y) rows[y] = comparer.CompareRow(y);
  });
  Sums sums;
  for (const Sums& row : rows) sums += row;
  return sums;
}

/// The figures that need the values in order. `values` are those of the compared pixels.
DeltaEFigures RankDeltaE(std::vector<float> values) {
  const auto percentile = [&values](std::size_t percent) {
    const std::size_t rank = (percent * values.size() + 99) / 100;  // from 1
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(rank) - 1;
    std::nth_element(values.begin(), at, values.end());
    return double{*at};
  };
  DeltaEFigures figures;
  figures.median = percentile(50);
  figures.percentile95 = percentile(95);
  figures.percentile99 = percentile(99);
  return figures;
}

DeltaEFigures FiguresOf(const Comparison& comparison, const Sums& sums) {
  std::vector<float> compared;
  compared.reserve(sums.pixels);
  std::size_t largest = 0;
  float max = -1.0F;
  for (std::size_t i = 0; i < comparison.deltaE.size(); ++i) {
    const float value = comparison.deltaE[i];
    if (std::isnan(value)) continue;
    compared.push_back(value);
    if (value > max) {
      max = value;
      largest = i;
    }
  }
  DeltaEFigures figures = RankDeltaE(std::move(compared));
  figures.mean = sums.deltaE / static_cast<double>(sums.pixels);
  figures.max = max;
  figures.maxX = static_cast<int>(largest % comparison.width);
  figures.maxY = static_cast<int>(largest / comparison.width);
  return figures;
}

bool ShareASignal(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b) {
  return !a->GetColorSpace().IsLinear() &&
         CHR::AreColorSpacesEquivalent(a->GetColorSpace(), orvmediatypes::kLinearFloatBGRA,
                                       b->GetColorSpace(), orvmediatypes::kLinearFloatBGRA,
                                       kLuminanceAside);
}

}  // namespace

std::optional<double> SignalError::PsnrDb() const {
  if (meanSquared == 0.0) return std::nullopt;
  return -10.0 * std::log10(meanSquared);
}

Comparison ComparePictures(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b,
                           const CompareSettings& settings) {
  RequireSameSize(a, b);
  const PictureLight lightA = LightOf(a, settings.white);
  const PictureLight lightB = LightOf(b, settings.white);

  Comparison result;
  result.width = a->GetBounds().width;
  result.height = a->GetBounds().height;
  result.deltaE.assign(result.Pixels(), std::numeric_limits<float>::quiet_NaN());
  result.marksA = MarkPixels(lightA, settings.gamutPrimaries, settings.white);
  result.marksB = MarkPixels(lightB, settings.gamutPrimaries, settings.white);

  const Sums sums = CompareRows(lightA, lightB, settings.white, result);
  result.comparedPixels = sums.pixels;
  if (sums.pixels == 0) return result;
  const double samples = 3.0 * static_cast<double>(sums.pixels);
  result.deltaEFigures = FiguresOf(result, sums);
  result.pqError = SignalError{sums.pqSquares / samples};
  if (ShareASignal(lightA.signal, lightB.signal)) {
    result.ownError = SignalError{sums.ownSquares / samples};
  }
  return result;
}

}  // namespace Quillon::Cli
