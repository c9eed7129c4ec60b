#pragma once

#include <filesystem>

namespace RefHost {

/// The user's folder for what programs keep and could make again: $XDG_CACHE_HOME or else
/// $HOME/.cache, on Windows %LOCALAPPDATA%. Empty where these name no absolute path.
std::filesystem::path UserCacheFolder();

}  // namespace RefHost
