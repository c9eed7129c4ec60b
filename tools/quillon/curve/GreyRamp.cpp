#include "tools/quillon/curve/GreyRamp.h"

#include <algorithm>

#include "curves/St2084.h"
#include "host/chromant/Conversion.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/picture/Frames.h"

namespace Quillon::Cli {

namespace {

constexpr int kSteps = 1000;
constexpr double kLeastTop = 10000.0;  // full scale of PQ
constexpr double kPastMarks = 1.6;

orvmediatypes::color::ColorSpace LinearBT2020() {
  orvmediatypes::color::ColorDescription description;
  description.primaries = RefHost::kPrimariesBT2020;
  description.transfer = RefHost::kTransferLinear;
  return orvmediatypes::color::ColorSpace(description);
}

}  // namespace

std::vector<float> RampLuminances(const std::vector<double>& marks) {
  const double largest = *std::max_element(marks.begin(), marks.end());
  const double top = EncodeSt2084(std::max(kLeastTop, kPastMarks * largest));
  std::vector<float> nits(marks.begin(), marks.end());
  for (int step = 0; step <= kSteps; ++step) {
    nits.push_back(static_cast<float>(DecodeSt2084(top * step / kSteps)));
  }
  std::sort(nits.begin(), nits.end());
  nits.erase(std::unique(nits.begin(), nits.end()), nits.end());
  return nits;
}

PX::VideoFrameRef RenderGreyRamp(const std::vector<float>& nits, int white) {
  PX::VideoFrameRef frame = MakeFloatFrame(static_cast<int>(nits.size()), 1, LinearBT2020());
  float* pixel = ViewFloatPixels(frame).Row(0);
  for (const float luminance : nits) {
    const auto linear = static_cast<float>(double{luminance} / white);
    pixel = std::fill_n(pixel, 3, linear);
    *pixel++ = 1.0F;
  }
  return frame;
}

std::vector<double> ComponentNits(const PX::VideoFrameRef& frame, int component, int white) {
  const PX::VideoFrameRef linear = ConvertToFloat(
      frame, CHR::ORVColorSpaceToEquivalentLinearColorSpace(frame->GetColorSpace()), white);
  const FloatPixels pixels = ViewFloatPixels(linear);
  std::vector<double> nits;
  nits.reserve(static_cast<std::size_t>(pixels.width) * pixels.height);
  for (int y = 0; y < pixels.height; ++y) {
    const float* row = pixels.Row(y);
    for (std::ptrdiff_t x = 0; x < pixels.width; ++x) {
      nits.push_back(double{row[4 * x + component]} * white);
    }
  }
  return nits;
}

}  // namespace Quillon::Cli
