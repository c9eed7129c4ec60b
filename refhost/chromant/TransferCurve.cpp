#include "refhost/chromant/TransferCurve.h"

#include <algorithm>
#include <iterator>

#include "refhost/chromant/Primaries.h"
#include "refhost/orvmediatypes/H273.h"
#include "refhost/orvmediatypes/PeakLuminance.h"

namespace CHR {

std::uint8_t CanonicalTransfer(std::uint8_t transfer) {
  switch (transfer) {
    case H273::kTransferBT709:
    case H273::kTransferSMPTE170M:
    case H273::kTransferXvYCC:
    case H273::kTransferBT2020:
    case H273::kTransferBT2020TwelveBit:
      return H273::kTransferBT709;
    case H273::kTransferGamma22:
    case H273::kTransferGamma28:
    case H273::kTransferSMPTE240M:
    case H273::kTransferLinear:
    case H273::kTransferSRGB:
    case H273::kTransferPQ:
    case H273::kTransferST428:
    case H273::kTransferHLG:
      return transfer;
    default:
      return 0;
  }
}

std::optional<TransferParams> TransferParamsOf(const orvmediatypes::color::ColorSpace& colorSpace,
                                               double whiteNits) {
  const auto& description = colorSpace.Description();
  const auto chromaticities = H273::ChromaticitiesOf(colorSpace);
  TransferParams params{};
  params.transfer = CanonicalTransfer(description.transfer);
  if (params.transfer == 0 || !chromaticities.has_value()) return std::nullopt;
  params.whiteNits = whiteNits;
  if (params.transfer == H273::kTransferHLG) {
    const int peak = description.peakLuminance;
    params.hlgPeakNits = peak > 0 ? peak : orvmediatypes::color::kNominalHlgNits;
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

}  // namespace CHR
