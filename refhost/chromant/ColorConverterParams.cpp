#include <cstring>

#include "host/chromant/Conversion.h"
#include "host/ironlane/ColorConvertParams.h"
#include "refhost/ResultCodes.h"
#include "refhost/chromant/Primaries.h"
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace CHR {

namespace {

/// The parameters are few enough to be their own identity.
orvcore::utility::Guid IdentityOf(const IL::ColorConvertParams& params, bool linear) {
  orvcore::utility::Guid identity;
  static_assert(sizeof(params.luminanceCoefficients) < sizeof(identity.bytes));
  std::memcpy(identity.bytes.data(), params.luminanceCoefficients.data(),
              sizeof(params.luminanceCoefficients));
  identity.bytes.back() = linear ? 1 : 0;
  return identity;
}

}  // namespace

int GetColorConverterParamsForColorSpace(const ColorSpace& colorSpace, bool linear,
                                         const ColorManagementSettings& /*settings*/,
                                         std::shared_ptr<IL::ColorConvertParams>& params,
                                         orvcore::utility::Guid& identity) {
  const auto chromaticities = RefHost::ChromaticitiesOf(colorSpace);
  if (!chromaticities.has_value()) return RefHost::kNotSupported;
  const RefHost::Matrix3 toXyz = RefHost::RgbToXyz(*chromaticities);
  params = std::make_shared<IL::ColorConvertParams>();
  params->luminanceCoefficients = {static_cast<float>(toXyz[3]), static_cast<float>(toXyz[4]),
                                   static_cast<float>(toXyz[5])};
  identity = IdentityOf(*params, linear);
  return 0;
}

}  // namespace CHR
