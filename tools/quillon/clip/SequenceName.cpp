#include "tools/quillon/clip/SequenceName.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

namespace Quillon::Cli {

namespace fs = std::filesystem;

std::optional<SequenceName> SequenceName::Parse(const fs::path& path) {
  const std::string name = path.filename().string();
  const std::size_t percent = name.find('%');
  if (percent == std::string::npos || name.find('%', percent + 1) != std::string::npos) {
    return std::nullopt;
  }
  SequenceName sequence;
  sequence.folder_ = path.parent_path();
  sequence.before_ = name.substr(0, percent);
  std::string_view rest = std::string_view(name).substr(percent + 1);
  if (rest.size() >= 2 && rest[0] == '0' && rest[1] >= '1' && rest[1] <= '9') {
    sequence.digits_ = static_cast<std::size_t>(rest[1] - '0');
    rest.remove_prefix(2);
  }
  if (!rest.starts_with('d')) return std::nullopt;
  sequence.after_ = rest.substr(1);
  return sequence;
}

fs::path SequenceName::FileOf(std::int64_t number) const {
  std::string digits = std::to_string(number);
  if (digits.size() < digits_) digits.insert(0, digits_ - digits.size(), '0');
  return folder_ / (before_ + digits + after_);
}

std::optional<std::int64_t> SequenceName::NumberOf(const std::string& fileName) const {
  if (fileName.size() <= before_.size() + after_.size() || !fileName.starts_with(before_) ||
      !fileName.ends_with(after_)) {
    return std::nullopt;
  }
  std::int64_t number = 0;
  const char* const first = fileName.data() + before_.size();
  const char* const last = fileName.data() + fileName.size() - after_.size();
  const auto [rest, error] = std::from_chars(first, last, number);
  if (error != std::errc() || rest != last || number < 0) return std::nullopt;
  return FileOf(number).filename() == fileName ? std::optional(number) : std::nullopt;
}

std::vector<std::int64_t> SequenceName::ExistingNumbers() const {
  std::vector<std::int64_t> numbers;
  std::error_code error;
  for (const auto& entry :
       fs::directory_iterator(folder_.empty() ? fs::path(".") : folder_, error)) {
    if (const auto number = NumberOf(entry.path().filename().string())) numbers.push_back(*number);
  }
  std::sort(numbers.begin(), numbers.end());
  return numbers;
}

}  // namespace Quillon::Cli
