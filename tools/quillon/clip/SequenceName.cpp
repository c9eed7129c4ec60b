#include "tools/quillon/clip/SequenceName.h"

#include <algorithm>
#include <charconv>
#include <regex>
#include <system_error>

namespace fs = std::filesystem;

std::optional<SequenceName> SequenceName::Parse(const fs::path& path) {
  static const std::regex kName("([^%]*)%(?:0([1-9]))?d([^%]*)");
  const std::string name = path.filename().string();
  std::smatch parts;
  if (!std::regex_match(name, parts, kName)) return std::nullopt;
  SequenceName sequence;
  sequence.folder_ = path.parent_path();
  sequence.before_ = parts[1];
  sequence.after_ = parts[3];
  if (parts[2].matched) sequence.digits_ = static_cast<std::size_t>(parts[2].str()[0] - '0');
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
