#pragma once

#include "host/pavix/GamutMappingUtils.h"

// What the settings ask for. The host decides from the algorithms, colour spaces and peaks that the
// record holds; the engine believes it. An algorithm value that nobody knows is best called
// applicable: the engine then refuses it with 0xA00F000C, where it would leave it out in silence.
// Called on the thread of the engine's caller.

namespace CHR {

/// Whether the settings ask for anything at all. Asked first, once a call, with the caller's
/// record; where it is false the source is copied into the destination.
bool IsGamutMappingApplicable(const PX::GamutMappingUtils::GamutMappingSettings& settings);

/// Whether gamut compression runs. Asked with the caller's record.
bool IsGamutCompressionApplicable(const PX::GamutMappingUtils::GamutMappingSettings& settings);

/// Whether the tone curve runs. Asked with what the caller set, or with a copy of it.
bool IsToneMappingApplicable(const PX::ToneMappingUtils::ToneMapSettings& settings);

}  // namespace CHR
