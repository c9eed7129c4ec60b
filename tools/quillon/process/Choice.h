#pragma once

#include <string>

#include "mapper/Mapping.h"

namespace Quillon::Cli {

/// A value of an option that takes one of several names.
template <class Value>
using Choice = Mapper::Named<Value>;

/// The names as help and messages list them: "auto|hue|none".
template <class Choices>
std::string ChoiceNames(const Choices& choices) {
  std::string names;
  for (const auto& choice : choices) {
    if (!names.empty()) names += '|';
    names += choice.name;
  }
  return names;
}

}  // namespace Quillon::Cli
