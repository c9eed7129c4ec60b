#pragma once

#include <CLI/CLI.hpp>

#include "tools/quillon/map/ClipOptions.h"

namespace Quillon::Cli {

/// The options of `quillon map` that are for clips and image sequences alone. The reference lives
/// as long as `app`.
void AddClipOptions(CLI::App& app, ClipOptions& options);

}  // namespace Quillon::Cli
