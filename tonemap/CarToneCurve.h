#pragma once

#include <array>
#include <cstddef>

#include "base/SupportVector.h"
#include "host/pavix/ToneMappingUtils.h"

namespace Quillon {

inline constexpr std::size_t kCarTableSize = 128;

/// Coefficients of the CAR curve by knee, built once per process.
struct CarTables {
  std::array<float, kCarTableSize> a;
  std::array<float, kCarTableSize> b;
};
const CarTables& GetCarTables();

/// Support parameters of the CAR curve:
///   0  knee point in linear light        3       destination peak in linear light
///   1  coefficient A                     4 to 6  red, green and blue luminance weights
///   2  coefficient B
void GetCARToneCurveSupportParams(
    const orvmediatypes::color::ColorSpace& destination,
    const orvmediatypes::color::ColorManagementSettings& colorManagement, float knee,
    SupportVector& params);

/// The same from a settings record.
void GetCARToneCurveSupportParams(PX::ToneMappingUtils::ToneMapSettings& settings,
                                  SupportVector& params);

/// The curve bound to its parameters.
struct CARToneMap {
  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

}  // namespace Quillon
