#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <span>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/Frames.h"

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

/// Reads and writes each float once: what no mapping in place can go below.
inline void ReadAndWrite(std::span<float> floats) {
  for (float& value : floats) value *= 0.5F;
}

/// Puts the medians into the benchmark's counters: ns a pixel of a 4K frame, and the ratio to the
/// floor. Returns the ns.
inline double ReportRatios(benchmark::State& state, const std::vector<double>& calls,
                           const std::vector<double>& floors) {
  const double call = Median(calls) * 1e9 / kPixels;
  const double floor = Median(floors) * 1e9 / kPixels;
  state.counters["ns/pixel"] = call;
  state.counters["floor_ns/pixel"] = floor;
  state.counters["to_floor"] = call / floor;
  return call;
}
