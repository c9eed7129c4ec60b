#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/IL/Device.h"

namespace IL {

/// Arguments as they were pushed, each in memory of its own for the launch to read.
class CudaArguments final : public orvcore::classref::IObject, public IArgumentSet {
 public:
  /// `byValueBytes`: what the values must add up to at least. The null buffer that the engine
  /// passes as a value is not counted by it.
  CudaArguments(KernelHandle kernel, std::uint32_t byValueBytes)
      : kernel_(kernel), byValueBytes_(byValueBytes) {}

  void* QueryInterface(std::string_view qualifiedName) noexcept override;

  int SetMemoryArgument(std::uint64_t buffer, int flags) override;
  int SetFrameArgument(const Quillon::GPUFrameDescriptor* descriptor) override;
  int SetValueArgument(const void* value, std::size_t bytes, std::size_t alignment) override;
  int Finalize() override;

  bool IsFor(KernelHandle kernel) const { return isFinal_ && kernel_ == kernel; }
  /// Where each argument lies, as a launch takes them. Valid while the set lives and is not
  /// changed.
  std::vector<void*> Pointers();

 private:
  void Push(const void* value, std::size_t bytes);

  KernelHandle kernel_;
  std::uint32_t byValueBytes_;
  std::size_t valueBytes_ = 0;
  bool isFinal_ = false;
  std::vector<std::vector<std::byte>> arguments_;
};

}  // namespace IL
