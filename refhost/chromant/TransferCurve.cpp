#include "refhost/chromant/TransferCurve.h"

#include <cstddef>

#include "curves/Hlg.h"
#include "curves/SdrTransfer.h"
#include "curves/St2084.h"
#include "refhost/chromant/Primaries.h"
#include "refhost/orvmediatypes/H273.h"
#include "refhost/orvmediatypes/PeakLuminance.h"

namespace CHR {

namespace {

template <class Function>
void ForEachChannel(std::span<double> rgb, Function function) {
  for (double& channel : rgb) channel = function(channel);
}

template <class Function>
void ForEachPixel(std::span<double> rgb, Function function) {
  for (std::size_t i = 0; i + 3 <= rgb.size(); i += 3) function(&rgb[i]);
}

}  // namespace

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

std::optional<TransferCurve> TransferCurve::Of(const orvmediatypes::color::ColorSpace& colorSpace,
                                               double whiteNits) {
  const auto& description = colorSpace.Description();
  const auto chromaticities = H273::ChromaticitiesOf(colorSpace);
  TransferCurve curve;
  curve.transfer_ = CanonicalTransfer(description.transfer);
  if (curve.transfer_ == 0 || !chromaticities.has_value()) return std::nullopt;
  curve.whiteNits_ = whiteNits;
  if (curve.transfer_ == H273::kTransferHLG) {
    const int peak = description.peakLuminance;
    curve.hlgPeakNits_ = peak > 0 ? peak : orvmediatypes::color::kNominalHlgNits;
    curve.hlgGamma_ = HlgSystemGamma(curve.hlgPeakNits_);
    const Matrix3 toXyz = RgbToXyz(*chromaticities);
    curve.luminanceWeights_ = {toXyz[3], toXyz[4], toXyz[5]};
  }
  return curve;
}

void TransferCurve::Decode(std::span<double> rgb) const {
  switch (transfer_) {
    case H273::kTransferBT709:
      return ForEachChannel(rgb, [](double v) { return DecodePower(v, 2.4); });
    case H273::kTransferGamma22:
      return ForEachChannel(rgb, [](double v) { return DecodePower(v, 2.2); });
    case H273::kTransferGamma28:
      return ForEachChannel(rgb, [](double v) { return DecodePower(v, 2.8); });
    case H273::kTransferSMPTE240M:
      return ForEachChannel(rgb, DecodeSmpte240M);
    case H273::kTransferSRGB:
      return ForEachChannel(rgb, DecodeSrgb);
    case H273::kTransferST428:
      return ForEachChannel(rgb, DecodeSt428);
    case H273::kTransferPQ:
      return ForEachChannel(rgb, [this](double v) { return DecodeSt2084(v) / whiteNits_; });
    case H273::kTransferHLG:
      ForEachPixel(rgb, [this](double* pixel) {
        DecodeHlg(pixel, luminanceWeights_.data(), hlgPeakNits_, hlgGamma_);
      });
      return ForEachChannel(rgb, [this](double nits) { return nits / whiteNits_; });
    default:  // linear
      return;
  }
}

void TransferCurve::Encode(std::span<double> rgb) const {
  switch (transfer_) {
    case H273::kTransferBT709:
      return ForEachChannel(rgb, [](double v) { return EncodePower(v, 2.4); });
    case H273::kTransferGamma22:
      return ForEachChannel(rgb, [](double v) { return EncodePower(v, 2.2); });
    case H273::kTransferGamma28:
      return ForEachChannel(rgb, [](double v) { return EncodePower(v, 2.8); });
    case H273::kTransferSMPTE240M:
      return ForEachChannel(rgb, EncodeSmpte240M);
    case H273::kTransferSRGB:
      return ForEachChannel(rgb, EncodeSrgb);
    case H273::kTransferST428:
      return ForEachChannel(rgb, EncodeSt428);
    case H273::kTransferPQ:
      return ForEachChannel(rgb, [this](double v) { return EncodeSt2084(v * whiteNits_); });
    case H273::kTransferHLG:
      ForEachChannel(rgb, [this](double v) { return v * whiteNits_; });
      return ForEachPixel(rgb, [this](double* pixel) {
        EncodeHlg(pixel, luminanceWeights_.data(), hlgPeakNits_, hlgGamma_);
      });
    default:  // linear
      return;
  }
}

}  // namespace CHR
