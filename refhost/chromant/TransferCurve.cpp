#include "refhost/chromant/TransferCurve.h"

#include <algorithm>
#include <iterator>

#include "refhost/chromant/Primaries.h"
#include "refhost/orvmediatypes/H273.h"
#include "refhost/orvmediatypes/PeakLuminance.h"

namespace RefHost {

std::uint8_t CanonicalTransfer(std::uint8_t transfer) {
  switch (transfer) {
    case kTransferBT709:
    case kTransferSMPTE170M:
    case kTransferXvYCC:
    case kTransferBT2020:
    case kTransferBT2020TwelveBit:
      return kTransferBT709;
    case kTransferGamma22:
    case kTransferGamma28:
    case kTransferSMPTE240M:
    case kTransferLinear:
    case kTransferSRGB:
    case kTransferPQ:
    case kTransferST428:
    case kTransferHLG:
      return transfer;
    default:
      return 0;
  }
}

std::optional<TransferParams> TransferParamsOf(const orvmediatypes::color::ColorSpace& colorSpace,
                                               double whiteNits) {
  const auto& description = colorSpace.Description();
  const auto chromaticities = ChromaticitiesOf(colorSpace);
  TransferParams params{};
  params.transfer = CanonicalTransfer(description.transfer);
  if (params.transfer == 0 || !chromaticities.has_value()) return std::nullopt;
  params.whiteNits = whiteNits;
  if (params.transfer == kTransferHLG) {
    const int peak = description.peakLuminance;
    params.hlgPeakNits = peak > 0 ? peak : kNominalHlgNits;
    params.hlgGamma = HlgSystemGamma(params.hlgPeakNits);
    const Matrix3 toXyz = RgbToXyz(*chromaticities);
    std::copy_n(toXyz.begin() + 3, 3, std::begin(params.luminanceWeights));
  }
  return params;
}

bool IsSameTransfer(const TransferParams& one, const TransferParams& other) {
  return one.transfer == other.transfer && one.whiteNits == other.whiteNits &&
         one.hlgPeakNits == other.hlgPeakNits && one.hlgGamma == other.hlgGamma &&
         std::equal(std::begin(one.luminanceWeights), std::end(one.luminanceWeights),
                    std::begin(other.luminanceWeights));
}

}  // namespace RefHost
