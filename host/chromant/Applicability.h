#pragma once

#include "host/pavix/GamutMappingUtils.h"

namespace CHR {

/// Whether the settings ask for anything at all: gamut compression or tone mapping.
bool IsGamutMappingApplicable(const PX::GamutMappingUtils::GamutMappingSettings& settings);
bool IsGamutCompressionApplicable(const PX::GamutMappingUtils::GamutMappingSettings& settings);
bool IsToneMappingApplicable(const PX::ToneMappingUtils::ToneMapSettings& settings);

}  // namespace CHR
