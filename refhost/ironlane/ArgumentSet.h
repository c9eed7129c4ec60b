#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/ironlane/Device.h"

namespace RefHost {

/// One argument as it was pushed.
struct Argument {
  enum class Kind { Frame, Memory, Value };
  Kind kind;
  /// Of a memory argument, its device pointer; aligned for any value.
  std::vector<std::byte> bytes;

  /// The device pointer that a frame begins with or a memory argument is.
  std::uint64_t Pointer() const;
};

/// Arguments of a launch, kept until then: a kernel has only one set at a time and may be launched
/// from several threads.
class ArgumentSet final : public orvcore::classref::IObject, public IL::IArgumentSet {
 public:
  /// `byValueBytes`: what the values must add up to at least. A null buffer that is passed as a
  /// value is not counted by it.
  ArgumentSet(IL::KernelHandle kernel, std::uint32_t byValueBytes)
      : kernel_(kernel), byValueBytes_(byValueBytes) {}

  void* QueryInterface(std::string_view qualifiedName) noexcept override;

  int SetMemoryArgument(std::uint64_t buffer, int flags) override;
  int SetFrameArgument(const Quillon::GPUFrameDescriptor* descriptor) override;
  int SetValueArgument(const void* value, std::size_t bytes, std::size_t alignment) override;
  int Finalize() override;

  const std::vector<Argument>& Arguments() const { return arguments_; }

 private:
  friend const ArgumentSet* FinalArguments(
      const orvcore::classref::InterfaceRef<IL::IArgumentSet>& arguments, IL::KernelHandle kernel);

  int Push(Argument::Kind kind, const void* value, std::size_t bytes);

  IL::KernelHandle kernel_;
  std::uint32_t byValueBytes_;
  std::size_t valueBytes_ = 0;
  bool isFinal_ = false;
  std::vector<Argument> arguments_;
};

/// The set behind a handle; null unless it is one of this library's, final, and the kernel's.
const ArgumentSet* FinalArguments(
    const orvcore::classref::InterfaceRef<IL::IArgumentSet>& arguments, IL::KernelHandle kernel);

}  // namespace RefHost
