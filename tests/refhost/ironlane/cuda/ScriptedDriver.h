#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace scripted {

/// One cuLaunchKernel: sizes, and the bytes of every parameter as the kernel's PTX lays them out.
struct Launch {
  std::string kernel;
  std::vector<unsigned> sizes;  ///< grid and block, three each
  std::vector<std::vector<std::uint8_t>> parameters;
};

/// What a library that stands in for NVIDIA's driver did and is to do. Memory is the process's own;
/// launches are recorded and do nothing. Not thread-safe where a test changes it.
struct Driver {
  int devices = 1;
  /// From the n-th call of this function on, it and all others that reach the device fail, as when
  /// it is lost; or the n-th call alone.
  std::string failing;
  int failingFrom = 1;
  bool isLostThen = false;
  int error = 719;

  // What is held now.
  int contexts = 0;
  int streams = 0;
  int modules = 0;
  int links = 0;
  int current = 0;  ///< depth of the stack of contexts
  std::map<std::uint64_t, std::vector<std::uint8_t>> memory;

  int linked = 0;  ///< modules ever linked
  std::vector<Launch> launches;
  std::map<std::string, int> calls;
};

}  // namespace scripted

/// Of the library that the process has open as the driver.
extern "C" scripted::Driver* TheScriptedDriver();
