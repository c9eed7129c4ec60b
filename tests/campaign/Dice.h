#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

/// Random choices of one case: the same seed gives the same choices with every standard library.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : engine_(seed) {}

  /// 0 to `count` - 1.
  std::size_t Below(std::size_t count) { return engine_() % count; }
  /// `least` to `most`, both included.
  std::size_t Between(std::size_t least, std::size_t most) {
    return least + Below(most - least + 1);
  }
  bool OneIn(std::size_t count) { return Below(count) == 0; }
  char Byte() { return static_cast<char>(Below(256)); }

  template <class T>
  const T& Of(const std::vector<T>& choices) {
    return choices[Below(choices.size())];
  }

 private:
  std::mt19937_64 engine_;
};
