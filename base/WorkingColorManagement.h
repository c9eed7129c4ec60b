#pragma once

#include "host/pavix/ToneMappingUtils.h"

namespace Quillon {

/// First version of the tone-map controls whose records carry colour-management settings.
inline constexpr int kColorManagedVersion = 3;

/// The colour-management settings to work with: the record's own, or default-constructed ones for
/// records from before `kColorManagedVersion`.
inline orvmediatypes::color::ColorManagementSettings WorkingColorManagementSettings(
    const PX::ToneMappingUtils::ToneMapSettings& settings) {
  if (settings.controls.GetVersion() < kColorManagedVersion) return {};
  return settings.colorManagementSettings;
}

}  // namespace Quillon
