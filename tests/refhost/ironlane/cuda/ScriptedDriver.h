#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace scripted {

/// One cuLaunchKernel that has run: sizes, and the bytes of every parameter as the kernel's PTX
/// lays them out.
struct Launch {
  std::string kernel;
  int device = 0;
  std::vector<unsigned> sizes;  ///< grid and block, three each
  std::vector<std::vector<std::uint8_t>> parameters;
};

struct Device {
  std::string name = "Scripted";
  int major = 9;
  int minor = 0;
  std::size_t memoryBytes = std::size_t{8} << 30U;
  bool hasPools = true;
};

/// What a library that stands in for NVIDIA's driver is to do, and what it did. Work that is given
/// to a stream is done when somebody waits for it, not before; only then are its operands looked
/// at. Memory is the process's own. A kernel adds 1 to the first byte of its last frame.
///
/// Not thread-safe where a test changes it.
struct Driver {
  std::vector<Device> devices = {Device{}};
  int version = 12040;

  /// The call of this name fails with this error, from the given time on or then alone. An error
  /// that a context does not survive ends it: all later calls in it fail alike.
  std::string failing;
  int failingFrom = 1;
  bool failsAlways = false;
  int error = 719;
  /// The same for work that is done later: the call returns 0, and the wait for it this error.
  std::string failingLater;
  /// Called at every call, before anything else is done.
  std::function<void(const std::string& function)> onCall;

  // What is held now.
  int contexts = 0;  ///< retained and not yet released
  int streams = 0;
  int events = 0;
  int modules = 0;
  int links = 0;
  int pinned = 0;
  int current = 0;  ///< depth of the stacks of contexts, of all threads
  std::map<std::uint64_t, std::size_t> memory;

  /// What was refused, each a misuse that a driver tells of or that ends in undefined behaviour.
  std::vector<std::string> refusals;
  int reservations = 0;             ///< times that memory was taken from a device
  int pageable = 0;                 ///< copies that were not to or from pinned memory
  int linked = 0;                   ///< modules ever linked
  int waits = 0;                    ///< times that the processor waited for a stream or an event
  std::vector<std::string> loaded;  ///< the versions of PTX of modules that were loaded: "7.0"
  std::vector<Launch> launches;
  std::map<std::string, int> calls;
};

}  // namespace scripted

extern "C" {
/// Of the library that the process has open as the driver.
scripted::Driver* TheScriptedDriver();
/// Forgets everything, as in a new process.
void ResetScriptedDriver();
}
