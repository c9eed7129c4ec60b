#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace Quillon::Cli {

/// The number that a text is as a whole, in decimal: no blanks, no '+', no other base, nothing
/// after it. Nothing where it is none, or does not fit. "inf" and "nan" are numbers of floating
/// types.
template <class Number>
std::optional<Number> ParseNumber(std::string_view text) {
  Number number{};
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

/// The same from `least` to `most`, without a sign for 0. Nothing for what lies outside.
template <class Number>
std::optional<Number> ParseNumberIn(std::string_view text, Number least, Number most) {
  const auto number = ParseNumber<Number>(text);
  const bool within = number && *number >= least && *number <= most;
  return within ? std::optional<Number>(*number + Number{}) : std::nullopt;
}

}  // namespace Quillon::Cli
