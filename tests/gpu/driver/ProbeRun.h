#pragma once

#include <filesystem>
#include <string>
#include <vector>

// What differs between systems when a probe meets a driver.

/// What the driver's library is called.
extern const char* const kDriverFile;

/// Takes entry points out of a library; all others are found as before. Throws where one is not
/// there.
void RemoveEntryPoints(std::string& library, const std::vector<std::string>& names);

/// What the probe prints in a process of its own, to which the library in the folder is the driver
/// and this what `cuInit` answers.
std::string RunProbe(const std::filesystem::path& folder, int answer,
                     const std::vector<std::filesystem::path>& arguments);
