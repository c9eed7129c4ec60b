#include "host/pavix/ColorSpaceUtils.h"

#include "refhost/orvmediatypes/H273.h"
#include "refhost/orvmediatypes/PeakLuminance.h"

using orvmediatypes::color::ColorSpace;

namespace PX::ColorSpaceUtils {

bool IsNewColorManagementEnabled() { return true; }

bool IsSDRColorSpace(const ColorSpace& colorSpace) {
  switch (colorSpace.Description().transfer) {
    case H273::kTransferBT709:
    case H273::kTransferGamma22:
    case H273::kTransferGamma28:
    case H273::kTransferSMPTE170M:
    case H273::kTransferSMPTE240M:
    case H273::kTransferXvYCC:
    case H273::kTransferSRGB:
    case H273::kTransferBT2020:
    case H273::kTransferBT2020TwelveBit:
    case H273::kTransferST428:
      return true;
    default:
      return false;
  }
}

// Linear light counts as HDR: it has no ceiling at graphics white.
bool IsHDRColorSpace(const ColorSpace& colorSpace) {
  switch (colorSpace.Description().transfer) {
    case H273::kTransferLinear:
    case H273::kTransferPQ:
    case H273::kTransferHLG:
      return true;
    default:
      return false;
  }
}

bool IsRec2100HLGColorSpace(const ColorSpace& colorSpace) {
  const auto& description = colorSpace.Description();
  return description.primaries == H273::kPrimariesBT2020 &&
         description.transfer == H273::kTransferHLG;
}

int GetPeakLuminance(const ColorSpace& colorSpace) {
  return orvmediatypes::color::PeakNits(colorSpace);
}

bool GetIfExistsPeakLuminanceFromColorSpaceMetaData(const ColorSpace& colorSpace, int& nits) {
  const auto metadata = orvmediatypes::color::MetadataPeakNits(colorSpace);
  nits = metadata.value_or(nits);
  return metadata.has_value();
}

}  // namespace PX::ColorSpaceUtils
