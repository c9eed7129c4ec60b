#include "tests/tools/curve/WellFormed.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace {

/// What stands between '&' and ';': a name that XML has, or a decimal number.
bool IsReference(std::string_view name) {
  static constexpr std::array<std::string_view, 5> kNames = {"amp", "lt", "gt", "quot", "apos"};
  if (std::find(kNames.begin(), kNames.end(), name) != kNames.end()) return true;
  return name.size() > 1 && name.front() == '#' &&
         name.find_first_not_of("0123456789", 1) == std::string_view::npos;
}

bool HasOnlyReferences(std::string_view text) {
  for (std::size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&', at + 1)) {
    const std::size_t end = text.find(';', at);
    if (end == std::string_view::npos || !IsReference(text.substr(at + 1, end - at - 1))) {
      return false;
    }
  }
  return true;
}

/// The end of a tag: quoted values may hold '>'.
std::size_t EndOfTag(const std::string& xml, std::size_t from) {
  char quote = 0;
  for (std::size_t i = from; i < xml.size(); ++i) {
    if (quote != 0) {
      if (xml[i] == quote) quote = 0;
    } else if (xml[i] == '"' || xml[i] == '\'') {
      quote = xml[i];
    } else if (xml[i] == '>') {
      return i;
    }
  }
  return std::string::npos;
}

/// The blank-separated attributes of a tag, each a name with a quoted value.
bool HasWellFormedAttributes(std::string_view text) {
  while (true) {
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    if (start == std::string_view::npos) return true;
    const std::size_t equals = text.find('=', start);
    if (start == 0 || equals == std::string_view::npos || equals + 1 >= text.size()) return false;
    const char quote = text[equals + 1];
    const std::size_t end = text.find(quote, equals + 2);
    if ((quote != '"' && quote != '\'') || end == std::string_view::npos) return false;
    const std::string_view value = text.substr(equals + 2, end - equals - 2);
    if (value.find('<') != std::string_view::npos || !HasOnlyReferences(value)) return false;
    text.remove_prefix(end + 1);
  }
}

class Reader {
 public:
  std::string Read(const std::string& xml) {
    std::size_t at = 0;
    for (std::size_t open = xml.find('<'); open != std::string::npos; open = xml.find('<', at)) {
      if (!HasOnlyReferences(std::string_view(xml).substr(at, open - at))) return "bad reference";
      const std::size_t end = EndOfTag(xml, open);
      if (end == std::string::npos) return "a tag has no end";
      std::string problem = ReadTag(xml.substr(open + 1, end - open - 1));
      if (!problem.empty()) return problem;
      at = end + 1;
    }
    if (!open_.empty()) return open_.back() + " is not closed";
    return roots_ == 1 ? "" : "there is not one root";
  }

 private:
  std::string ReadTag(std::string tag) {
    if (tag.starts_with('?')) return tag.ends_with('?') ? "" : "bad declaration";
    if (tag.starts_with('/')) {
      if (open_.empty() || open_.back() != tag.substr(1)) return tag + " closes what is not open";
      open_.pop_back();
      return "";
    }
    const bool isEmpty = tag.ends_with('/');
    if (isEmpty) tag.pop_back();
    const std::size_t nameEnd = tag.find_first_of(" \t\r\n");
    const std::string name = tag.substr(0, nameEnd);
    if (name.empty()) return "a tag has no name";
    if (nameEnd != std::string::npos && !HasWellFormedAttributes(tag.substr(nameEnd))) {
      return "bad attributes in " + name;
    }
    if (open_.empty()) ++roots_;
    if (!isEmpty) open_.push_back(name);
    return "";
  }

  std::vector<std::string> open_;
  int roots_ = 0;
};

}  // namespace

std::string WhyNotWellFormed(const std::string& xml) { return Reader().Read(xml); }
