#include "host/pavix/ColorSpaceUtils.h"

#include "refhost/orvmediatypes/H273.h"
#include "refhost/orvmediatypes/PeakLuminance.h"

using orvmediatypes::color::ColorSpace;

namespace PX::ColorSpaceUtils {

bool IsNewColorManagementEnabled() { return true; }

bool IsSDRColorSpace(const ColorSpace& colorSpace) {
  switch (colorSpace.Description().transfer) {
    case RefHost::kTransferBT709:
    case RefHost::kTransferGamma22:
    case RefHost::kTransferGamma28:
    case RefHost::kTransferSMPTE170M:
    case RefHost::kTransferSMPTE240M:
    case RefHost::kTransferXvYCC:
    case RefHost::kTransferSRGB:
    case RefHost::kTransferBT2020:
    case RefHost::kTransferBT2020TwelveBit:
    case RefHost::kTransferST428:
      return true;
    default:
      return false;
  }
}

// Linear light counts as HDR: it has no ceiling at graphics white.
bool IsHDRColorSpace(const ColorSpace& colorSpace) {
  switch (colorSpace.Description().transfer) {
    case RefHost::kTransferLinear:
    case RefHost::kTransferPQ:
    case RefHost::kTransferHLG:
      return true;
    default:
      return false;
  }
}

bool IsRec2100HLGColorSpace(const ColorSpace& colorSpace) {
  const auto& description = colorSpace.Description();
  return description.primaries == RefHost::kPrimariesBT2020 &&
         description.transfer == RefHost::kTransferHLG;
}

int GetPeakLuminance(const ColorSpace& colorSpace) { return RefHost::PeakNits(colorSpace); }

bool GetIfExistsPeakLuminanceFromColorSpaceMetaData(const ColorSpace& colorSpace, int& nits) {
  const auto metadata = RefHost::MetadataPeakNits(colorSpace);
  nits = metadata.value_or(nits);
  return metadata.has_value();
}

}  // namespace PX::ColorSpaceUtils
