#pragma once

#include <map>
#include <string>
#include <vector>

namespace curves {

/// One way to set what a curve reads beside its channels.
template <class Number>
struct Setting {
  std::vector<Number> params;
  /// Channel values at which the curve goes another way.
  std::vector<Number> thresholds;
};

/// What a curve is tried on.
template <class Number>
struct Domain {
  /// How many of the numbers that go in are channels: they come first, and each takes every
  /// notable value together with every one of the others.
  int channels;
  /// Ordinary channels lie between 0 and this.
  Number top;
  std::vector<Setting<Number>> settings;
};

/// By name of the call.
const std::map<std::string, Domain<float>>& FloatDomains();
const std::map<std::string, Domain<double>>& DoubleDomains();

}  // namespace curves
