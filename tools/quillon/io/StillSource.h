#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// The bytes of a file that is to be read.
struct StillSource {
  std::filesystem::path path;
  std::vector<std::uint8_t> bytes;
};

/// Reads a whole file. Throws StillError where it is missing, empty or no plain file.
StillSource LoadStillSource(const std::filesystem::path& path);

/// Throws StillError (CannotRead): the file is damaged in the way described.
[[noreturn]] void FailDamaged(const StillSource& source, const std::string& wrong);

/// Throws StillError (NotSupported).
[[noreturn]] void FailNotSupported(const StillSource& source, const std::string& wrong,
                                   const std::string& remedy);

/// Throws StillError unless both sides are between 1 and 65535 and their product at most 2^28.
void CheckDimensions(const StillSource& source, std::int64_t width, std::int64_t height);
