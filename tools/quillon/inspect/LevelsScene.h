#pragma once

#include "tools/quillon/inspect/Inspection.h"
#include "tools/quillon/plot/PlotScene.h"

namespace Quillon::Cli {

/// The measured light levels over the frames of a clip, with the peaks to map from drawn in: the
/// one of the whole clip and those of its scenes.
Scene MakeLevelsScene(const Inspection& inspection, const ClipLevels& levels);

}  // namespace Quillon::Cli
