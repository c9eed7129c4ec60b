#pragma once

#include "host/orvmediatypes/FrameProperties.h"

namespace Quillon {

/// Render quality of every copy with conversion that the engine asks for.
/// Deliberate: whatever the settings.
inline constexpr orvmediatypes::RenderQuality kCopyQuality = 4;

}  // namespace Quillon
