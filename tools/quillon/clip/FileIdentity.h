#pragma once

#include <filesystem>
#include <string>

namespace Quillon::Cli {

/// What tells one version of a file from another: its size and when it was changed.
std::string FileIdentity(const std::filesystem::path& path);

}  // namespace Quillon::Cli
