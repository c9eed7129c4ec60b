#pragma once

#include <filesystem>

namespace Quillon::Cli {

/// Whether two names, of files or of image sequences, have a file in common, by whatever spelling
/// or link, or are one sequence.
bool ShareFiles(const std::filesystem::path& a, const std::filesystem::path& b);

/// Throws CommandError (Usage) where a file to write is the input. Empty: none is written.
void RequireOtherFile(const std::filesystem::path& output, const std::filesystem::path& input);

/// The same for `quillon map`, where `inPlace` allows a picture or clip to be replaced; it is
/// refused where it would have no effect.
void CheckInPlace(const std::filesystem::path& output, const std::filesystem::path& input,
                  bool inPlace);

}  // namespace Quillon::Cli
