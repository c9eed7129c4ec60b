#pragma once

#include "host/ironlane/Device.h"
#include "tests/host/Host.h"
#include "tests/host/Inventory.h"

namespace scripted {

/// Arguments of one launch: records what is pushed, with the values.
class ArgumentSet final : public orvcore::classref::IObject, public IL::IArgumentSet {
 public:
  ArgumentSet() = default;
  ArgumentSet(const ArgumentSet&) = delete;
  ArgumentSet& operator=(const ArgumentSet&) = delete;
  ~ArgumentSet() = default;

  void* QueryInterface(std::string_view qualifiedName) noexcept override;

  int SetMemoryArgument(std::uint64_t buffer, int flags) override;
  int SetFrameArgument(const Quillon::GPUFrameDescriptor* descriptor) override;
  int SetValueArgument(const void* value, std::size_t bytes, std::size_t alignment) override;
  int Finalize() override;

 private:
  Live<Counted::ArgumentSet> live_;
};

orvcore::classref::InterfaceRef<IL::IArgumentSet> MakeArgumentSet();

}  // namespace scripted
