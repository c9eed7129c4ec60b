#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tools/quillon/io/Still.h"

namespace Quillon::Cli {

/// The bytes of a file that is to be read.
struct StillSource {
  std::filesystem::path path;
  std::vector<std::uint8_t> bytes;
  /// What a picture may have at most.
  std::int64_t maxPixels = kDefaultMaxPixels;
};

/// The first bytes of a file, `count` where there are so many. Throws StillError where it is
/// missing, empty, no plain file, or cannot be read.
std::vector<std::uint8_t> LoadHead(const std::filesystem::path& path, std::size_t count);

/// Reads a whole file. Throws StillError where it is missing, empty or no plain file.
StillSource LoadStillSource(const std::filesystem::path& path);

/// Throws StillError (CannotRead): the file is damaged in the way described.
[[noreturn]] void FailDamaged(const StillSource& source, const std::string& wrong);

/// Throws StillError (NotSupported).
[[noreturn]] void FailNotSupported(const StillSource& source, const std::string& wrong,
                                   const std::string& remedy);

/// Throws StillError unless both sides are between 1 and 65535 and their product at most the
/// source's `maxPixels`.
void CheckDimensions(const StillSource& source, std::int64_t width, std::int64_t height);

/// Throws StillError (CannotRead) where what the file says it holds, `what` in words, needs more
/// bytes than `held`.
void CheckHeld(const StillSource& source, const std::string& what, double needed, double held);

}  // namespace Quillon::Cli
