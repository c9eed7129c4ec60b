#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/ironlane/Device.h"
#include "refhost/ironlane/RowTransfer.h"

namespace RefHost {

/// What is known of a device before any work is given to it.
struct DeviceInfo {
  std::int32_t platformKind = 0;
  /// Place among all devices of the kind, from 0.
  std::int32_t ordinal = 0;
  /// As their makers call them.
  std::string platform;
  std::string name;
  std::string driver;
  std::uint64_t memoryBytes = 0;
  /// Whether arithmetic on floats is all that IEEE 754 asks: division and square root rounded
  /// correctly, subnormal numbers kept. Where it is not, results may differ from those of a
  /// processor in the last bits.
  bool isExact = true;
  /// Whether it is the processor itself.
  bool isProcessor = false;
  /// Why no kernels can run there ("no double precision"); empty where they can.
  std::string obstacle;
};

/// A device of the reference host, with what the host does on it beside the engine's launches. Work
/// on the same memory is done in the order in which it was given; what different threads give on
/// different memory may be done at the same time. Any thread may call; failures that the device
/// notices late come out of a later call that waits. Codes are those of ResultCodes.h.
class GPUDevice : public IL::Device {
 public:
  virtual ~GPUDevice() = default;

  virtual const DeviceInfo& Info() const = 0;

  /// Threads along either side of the blocks to launch the reference host's own kernels in; 1 where
  /// the device chooses them itself.
  virtual std::uint32_t BlockSide() const = 0;

  /// Whether the device failed in a way that only opening it anew mends.
  virtual bool IsLost() const { return false; }

  /// Memory whose contents are undefined. `bytes` is above 0; `pointer` is as it was on failure.
  /// Kernels take it as a frame's device pointer; it is aligned to 256 bytes.
  virtual int Allocate(std::size_t bytes, std::uint64_t& pointer) = 0;
  /// Once for every pointer that `Allocate` gave, while the device lives. Work that was given
  /// before is done on it still, and is not waited for.
  virtual void Free(std::uint64_t pointer) = 0;

  /// Rows without gaps to and from the device's memory, in pieces: those that are on their way, and
  /// those that the function fills or takes, at the same time. Both return when all have arrived,
  /// or when the function failed, with its code. Sizes are above 0.
  virtual int UploadRows(std::uint64_t to, std::size_t rowBytes, std::size_t rowCount,
                         const RowsFunction& fill) = 0;
  virtual int DownloadRows(std::uint64_t from, std::size_t rowBytes, std::size_t rowCount,
                           const RowsFunction& take) = 0;
  /// The same for bytes that are there as a whole.
  int Upload(const void* from, std::uint64_t to, std::size_t bytes);
  int Download(std::uint64_t from, void* to, std::size_t bytes);
  /// Between pieces of memory that do not overlap.
  virtual int Copy(std::uint64_t from, std::uint64_t to, std::size_t bytes) = 0;

  /// Waits until all work of all threads is done, and tells whether any of it failed.
  virtual int Finish() = 0;

  /// The kernel of a module, built where it has not been before. It lives as long as the device.
  /// Null, and a message to the trace that holds the compiler's, when there is none or it does not
  /// build; the next call tries again. Launches do not wait for it.
  virtual IL::KernelHandle LoadKernel(std::string_view module, std::string_view kernel) = 0;

 protected:
  /// A context identity that no device of this process had before; never 0.
  static std::uint64_t NewContextIdentity();
};

}  // namespace RefHost
