#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "host/ironlane/GPUFrameDescriptor.h"
#include "host/orvcore/InterfaceRef.h"

// Devices run the engine's kernels on frames that live in their memory. A host without any still
// has these types, a `LoadKernel` that returns null, and no frame with `KS::IGPUVideoFrame`:
// nothing else of this file is called then.

namespace IL {

/// A kernel made ready for one device. The host's own; the engine compares it with null, keeps it
/// and passes it back.
using KernelHandle = void*;

/// The platform kinds that have a name. 3 and 4 are another host's.
inline constexpr std::int32_t kPlatformCuda = 1;
inline constexpr std::int32_t kPlatformOpenCl = 2;

/// What the engine reads of a device.
struct DeviceDescription {
  /// 0 to 4. The engine keeps kernels of these alone; it loads those of other kinds at every call.
  /// On kinds 2, 3 and 4 it pushes buffers by `SetMemoryArgument`, on others as 8-byte values.
  std::int32_t platformKind = 0;
  /// Place among the devices of the platform, from 0. The engine keeps kernels of 0 to 3.
  std::int32_t ordinal = 0;
  /// Chooses the block of a launch, in threads: kind 2 has 1 by 1 and kind 3 has 16 by 16 whatever
  /// stands here; on other kinds 1 means 64 by 1, 3, 5 and 6 mean 16 by 16, and the rest 1 by 1.
  std::int32_t architectureCode = 0;
  /// Changes when kernels that were loaded before hold no longer, as after a lost device.
  std::uint64_t contextIdentity = 0;
};

/// Arguments of one launch. The engine pushes them one by one, in the order that Kernels.h says,
/// from one thread. What a pointer refers to is read before the operation returns. Every operation
/// returns 0 or a negative code; after the first negative one nothing more is pushed, nothing is
/// launched, and the code is the call's result. The order of the operations is fixed.
struct IArgumentSet {
  /// A buffer of the device. The engine passes 0, which is no buffer, and 0 for `flags`.
  virtual int SetMemoryArgument(std::uint64_t buffer, int flags) = 0;
  /// The frame, to be copied whole. Not counted by the bytes of `CreateArguments`.
  virtual int SetFrameArgument(const Quillon::GPUFrameDescriptor* descriptor) = 0;
  /// A number of 4 or 8 bytes, by its bits; the alignment is equal to the size.
  virtual int SetValueArgument(const void* value, std::size_t bytes, std::size_t alignment) = 0;
  /// Called once, after the last argument.
  virtual int Finalize() = 0;

 protected:
  ~IArgumentSet() = default;
};

/// A GPU. Operations are called on any thread, and by several threads at once where the caller maps
/// several frames at once. Work on the same memory is done in the order in which it was given: the
/// engine waits for nothing. The order of the operations is fixed.
class Device {
 public:
  /// A new, empty set of arguments for one launch of the kernel. `byValueBytes` is 16 and 4 for
  /// each float: what is passed by value without the frame and the auxiliary buffer. 0, and a
  /// usable handle with one reference in `arguments`; or a negative code.
  virtual int CreateArguments(KernelHandle kernel, std::uint32_t byValueBytes,
                              orvcore::classref::InterfaceRef<IArgumentSet>& arguments) = 0;
  /// Runs the kernel on `gridX` by `gridY` blocks of `blockX` by `blockY` threads, which may reach
  /// beyond the frame; a block of 1 by 1 leaves the work-group to the device. May return before the
  /// kernel has run; the engine releases the arguments at once. 0 or above, or a negative code. The
  /// engine passes 0 for `flags`.
  virtual int Launch(KernelHandle kernel,
                     const orvcore::classref::InterfaceRef<IArgumentSet>& arguments,
                     std::uint32_t gridX, std::uint32_t gridY, std::uint32_t blockX,
                     std::uint32_t blockY, std::uint32_t flags) = 0;
  /// Asked anew whenever kernels are to run: the context identity may have changed.
  virtual DeviceDescription GetDescription() const = 0;

 protected:
  ~Device() = default;
};

/// A kernel of a module, made ready for the device; null when there is no such kernel or it cannot
/// be made ready. `device` is not null. The names are read before it returns. Any thread; several
/// may ask for one kernel at once. A handle holds as long as the process, or until the context
/// identity of its device changes, and the engine gives none back. The engine keeps null, too, and
/// asks again only when the identity changes.
KernelHandle LoadKernel(const std::shared_ptr<Device>& device, std::string_view module,
                        std::string_view kernel);

}  // namespace IL
