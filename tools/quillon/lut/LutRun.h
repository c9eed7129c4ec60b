#pragma once

#include <filesystem>
#include <ostream>

#include "tools/quillon/options/MappingOptions.h"

namespace Quillon::Cli {

/// What `quillon lut` was asked for.
struct LutOptions {
  std::filesystem::path output;
  int size = 33;
  /// How `quillon map` would be asked to map a picture.
  MappingOptions mapping;
  bool explain = false;
  bool overwrite = false;
  bool quiet = false;
};

/// Lets the engine map every signal of the lattice as `mapping` maps a picture that holds them,
/// writes the results, and measures how far an interpolated LUT is from the engine. `out` gets what
/// was done, `notes` what the user should know. Throws CommandError or StillError.
void RunLut(const LutOptions& options, std::ostream& out, std::ostream& notes);

}  // namespace Quillon::Cli
