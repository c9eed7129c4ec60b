#include "tests/host/ArgumentSet.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>

#include "host/ironlane/GPUFrameDescriptor.h"
#include "tests/host/Describe.h"

namespace scripted {

namespace {

struct ArgumentBlock final : orvcore::classref::ControlBlock {
  void DisposeObject() noexcept override {
    Host::Instance().Enter("arguments.DisposeObject", {});
    arguments.reset();
  }

  void DestroyBlock() noexcept override {
    Host::Instance().Enter("arguments.DestroyBlock", {});
    const std::unique_ptr<ArgumentBlock> self(this);
  }

  std::unique_ptr<ArgumentSet> arguments = std::make_unique<ArgumentSet>();
  Live<Counted::ControlBlock> live;
};

/// "0x3f800000": as many digits as the value has.
std::string DescribeValue(const void* value, std::size_t bytes) {
  std::uint64_t number = 0;
  std::memcpy(&number, value, std::min(bytes, sizeof(number)));
  std::array<char, 24> text{};
  std::snprintf(text.data(), text.size(), "0x%0*llx", static_cast<int>(2 * bytes),
                static_cast<unsigned long long>(number));
  return text.data();
}

/// "{0x1000, 4x2, pitch 8, flag 1, 0}".
std::string DescribeFrame(const Quillon::GPUFrameDescriptor& frame) {
  std::array<char, 128> text{};
  std::snprintf(text.data(), text.size(), "{0x%llx, %ux%u, pitch %u, flag %u, %u}",
                static_cast<unsigned long long>(frame.devicePointer), frame.width, frame.height,
                frame.rowPitchPixels, frame.formatFlag, frame.reserved);
  return text.data();
}

int Push(const std::string& operation, const std::string& arguments) {
  return Host::Instance().Enter("arguments." + operation, arguments).code;
}

}  // namespace

void* ArgumentSet::QueryInterface(std::string_view /*qualifiedName*/) noexcept { return nullptr; }

int ArgumentSet::SetMemoryArgument(std::uint64_t buffer, int flags) {
  return Push("SetMemoryArgument", Arguments(std::to_string(buffer), flags));
}

int ArgumentSet::SetFrameArgument(const Quillon::GPUFrameDescriptor* descriptor) {
  return Push("SetFrameArgument", DescribeFrame(*descriptor));
}

int ArgumentSet::SetValueArgument(const void* value, std::size_t bytes, std::size_t alignment) {
  return Push("SetValueArgument", Arguments(std::to_string(bytes), std::to_string(alignment),
                                            DescribeValue(value, bytes)));
}

int ArgumentSet::Finalize() { return Push("Finalize", {}); }

orvcore::classref::InterfaceRef<IL::IArgumentSet> MakeArgumentSet() {
  auto block = std::make_unique<ArgumentBlock>();
  ArgumentSet* arguments = block->arguments.get();
  return {arguments, arguments, block.release()};
}

}  // namespace scripted
