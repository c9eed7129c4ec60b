#pragma once

#include <filesystem>

/// Makes this the user's folder for what programs keep, in this process.
void SetCacheHome(const std::filesystem::path& folder);
