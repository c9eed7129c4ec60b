#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "host/orvcore/InterfaceRef.h"

namespace Quillon {
/// First argument of every kernel of the engine, which lays it out.
struct GPUFrameDescriptor;
}  // namespace Quillon

namespace IL {

using KernelHandle = void*;

/// What the engine reads of a device's description.
struct DeviceDescription {
  std::int32_t platformKind = 0;      ///< 0 to 4; 1 CUDA, 2 OpenCL
  std::int32_t ordinal = 0;           ///< place among the devices of its platform
  std::int32_t architectureCode = 0;  ///< chooses the block size on kinds other than 2 and 3
  std::uint64_t contextIdentity = 0;  ///< changes when loaded kernels no longer hold
};

/// Arguments of one launch, pushed one by one. Every operation returns 0 or a negative code.
struct IArgumentSet {
  virtual int SetMemoryArgument(std::uint64_t buffer, int flags) = 0;
  virtual int SetFrameArgument(const Quillon::GPUFrameDescriptor* descriptor) = 0;
  virtual int SetValueArgument(const void* value, std::size_t bytes, std::size_t alignment) = 0;
  /// Called once, after the last argument.
  virtual int Finalize() = 0;

 protected:
  ~IArgumentSet() = default;
};

/// A GPU.
class Device {
 public:
  virtual int CreateArguments(KernelHandle kernel, std::uint32_t byValueBytes,
                              orvcore::classref::InterfaceRef<IArgumentSet>& arguments) = 0;
  /// The engine always passes 0 for `flags`.
  virtual int Launch(KernelHandle kernel,
                     const orvcore::classref::InterfaceRef<IArgumentSet>& arguments,
                     std::uint32_t gridX, std::uint32_t gridY, std::uint32_t blockX,
                     std::uint32_t blockY, std::uint32_t flags) = 0;
  virtual DeviceDescription GetDescription() const = 0;

 protected:
  ~Device() = default;
};

/// A kernel of a module, made ready for the device. Null when there is no such kernel.
KernelHandle LoadKernel(const std::shared_ptr<Device>& device, std::string_view module,
                        std::string_view kernel);

}  // namespace IL
