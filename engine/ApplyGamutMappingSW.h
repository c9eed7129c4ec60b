#pragma once

#include "host/pavix/GamutMappingUtils.h"
#include "host/pavix/IVideoFrame.h"

namespace Quillon {

/// Maps one system-memory frame into another of equal bounds. Returns 0 or the first failure; the
/// destination is then left as the failed step left it.
int ApplyGamutMappingSW(const PX::VideoFrameRef& source,
                        const PX::GamutMappingUtils::GamutMappingSettings& settings,
                        PX::VideoFrameRef& destination);

}  // namespace Quillon
