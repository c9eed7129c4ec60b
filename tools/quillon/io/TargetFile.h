#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

/// The extension of a name in lower case, with its dot; empty where it has none.
std::string LowerCaseExtension(const std::filesystem::path& path);

/// Throws StillError (CannotWrite) where no file can be put under this name: its folder is missing,
/// it is a folder, a device or the like, or it is a file that is not to be replaced.
void CheckTargetFile(const std::filesystem::path& path, bool overwrite);

/// Writes a file as a whole or not at all: under a temporary name beside `path`, renamed when it is
/// complete. Its permissions follow the umask. Throws StillError (CannotWrite).
void WriteTargetFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes,
                     bool overwrite);
