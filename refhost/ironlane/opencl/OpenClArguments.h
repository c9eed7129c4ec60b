#pragma once

#include <cstddef>
#include <cstdint>
#include <variant>
#include <vector>

#include "host/IL/Device.h"
#include "refhost/ironlane/opencl/OpenCl.h"

namespace IL {

/// Arguments as they were pushed. They are given to the kernel at the launch, since a kernel has
/// only one set at a time and may be launched from several threads.
class OpenClArguments final : public orvcore::classref::IObject, public IArgumentSet {
 public:
  /// `byValueBytes`: what the values must add up to.
  OpenClArguments(KernelHandle kernel, std::uint32_t byValueBytes)
      : kernel_(kernel), byValueBytes_(byValueBytes) {}

  void* QueryInterface(std::string_view qualifiedName) noexcept override;

  /// 0 is no memory.
  int SetMemoryArgument(std::uint64_t buffer, int flags) override;
  /// Two arguments of the kernel: the frame's memory, and the descriptor.
  int SetFrameArgument(const Quillon::GPUFrameDescriptor* descriptor) override;
  int SetValueArgument(const void* value, std::size_t bytes, std::size_t alignment) override;
  int Finalize() override;

  bool IsFor(KernelHandle kernel) const { return isFinal_ && kernel_ == kernel; }
  /// All memory that the kernel is to see, 0 left out.
  std::vector<std::uint64_t> Memory() const;
  /// Gives the arguments to a kernel.
  cl_int PassTo(cl::Kernel& kernel) const;

 private:
  using Value = std::vector<std::byte>;

  KernelHandle kernel_;
  std::uint32_t byValueBytes_;
  std::size_t valueBytes_ = 0;
  bool isFinal_ = false;
  std::vector<std::variant<std::uint64_t, Value>> arguments_;
};

}  // namespace IL
