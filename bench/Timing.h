#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

/// Seconds that the function takes.
template <class Function>
double SecondsOf(const Function& function) {
  const auto start = std::chrono::steady_clock::now();
  function();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The upper median. `values` is not empty.
inline double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}
