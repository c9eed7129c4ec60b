#pragma once

#include <filesystem>
#include <string>

namespace Quillon::Cli {

/// The path of `stem` + `ending` in the folder of `target`. Where the name would be longer than
/// that folder takes, the stem is cut short, never within a character of UTF-8, and a hash of the
/// whole stem follows: different stems keep different names, and one stem always has the same.
std::filesystem::path NameBeside(const std::filesystem::path& target, const std::string& stem,
                                 const std::string& ending);

}  // namespace Quillon::Cli
