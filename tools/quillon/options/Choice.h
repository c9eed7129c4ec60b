#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

/// A value of an option that takes one of several names.
template <class Value>
struct Choice {
  std::string_view name;
  Value value;
};

/// The names as help and messages list them: "auto|hue|none".
template <class Value, std::size_t Count>
std::string ChoiceNames(const std::array<Choice<Value>, Count>& choices) {
  std::string names;
  for (const auto& choice : choices) {
    if (!names.empty()) names += '|';
    names += choice.name;
  }
  return names;
}
