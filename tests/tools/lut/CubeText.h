#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tools/quillon/lut/LutLattice.h"

namespace Quillon::Cli {

/// A .cube file as a reader of the format sees it.
struct CubeText {
  std::string title;
  std::string comments;
  LutLattice lattice;
};

/// Throws std::runtime_error for a line that the format does not know, a size that does not fit the
/// number of results, and results outside of 0 to 1.
CubeText ReadCube(const std::filesystem::path& path);

/// The number behind a text of the comments. Throws std::runtime_error.
double NumberBehind(const std::string& comments, const std::string& text);

}  // namespace Quillon::Cli
