#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <system_error>

namespace Quillon::Cli {

/// The folder of a path, "." where it names none.
std::filesystem::path FolderOf(const std::filesystem::path& path);

/// The extension of a name in lower case, with its dot; empty where it has none.
std::string LowerCaseExtension(const std::filesystem::path& path);

/// Throws StillError (CannotWrite) where no file can be put under this name: its folder is missing,
/// it is a folder, a device or the like, or it is a file that is not to be replaced, or a symbolic
/// link, which is itself replaced, not what it leads to.
void CheckTargetFile(const std::filesystem::path& path, bool overwrite);

/// Gives a finished file its name. Without `overwrite` nothing is replaced, also not what came
/// there a moment ago: the error is then std::errc::file_exists.
std::error_code GiveName(const std::filesystem::path& finished, const std::filesystem::path& name,
                         bool overwrite);

/// Writes a file as a whole or not at all: under a temporary name beside `path`, renamed when it is
/// complete. Nothing is left of it when a signal ends the program. Its permissions follow the
/// umask. Throws StillError (CannotWrite).
void WriteTargetFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes,
                     bool overwrite);

}  // namespace Quillon::Cli
