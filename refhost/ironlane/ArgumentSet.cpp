#include "refhost/ironlane/ArgumentSet.h"

#include <cstring>

#include "refhost/ResultCodes.h"

namespace RefHost {

std::uint64_t Argument::Pointer() const {
  std::uint64_t pointer = 0;
  std::memcpy(&pointer, bytes.data(), sizeof(pointer));
  return pointer;
}

void* ArgumentSet::QueryInterface(std::string_view qualifiedName) noexcept {
  if (qualifiedName != orvcore::utility::QualifiedName<IL::IArgumentSet>()) return nullptr;
  return static_cast<IL::IArgumentSet*>(this);
}

int ArgumentSet::Push(Argument::Kind kind, const void* value, std::size_t bytes) {
  if (isFinal_ || value == nullptr || bytes == 0) return kInvalidLaunch;
  std::vector<std::byte> copy(bytes);
  std::memcpy(copy.data(), value, bytes);
  arguments_.push_back({kind, std::move(copy)});
  return 0;
}

int ArgumentSet::SetMemoryArgument(std::uint64_t buffer, int /*flags*/) {
  return Push(Argument::Kind::Memory, &buffer, sizeof(buffer));
}

int ArgumentSet::SetFrameArgument(const Quillon::GPUFrameDescriptor* descriptor) {
  return Push(Argument::Kind::Frame, descriptor, sizeof(*descriptor));
}

int ArgumentSet::SetValueArgument(const void* value, std::size_t bytes, std::size_t /*alignment*/) {
  const int result = Push(Argument::Kind::Value, value, bytes);
  if (result == 0) valueBytes_ += bytes;
  return result;
}

int ArgumentSet::Finalize() {
  if (isFinal_ || valueBytes_ < byValueBytes_) return kInvalidLaunch;
  isFinal_ = true;
  return 0;
}

const ArgumentSet* FinalArguments(
    const orvcore::classref::InterfaceRef<IL::IArgumentSet>& arguments, IL::KernelHandle kernel) {
  const auto* set = dynamic_cast<const ArgumentSet*>(arguments.Object());
  return set != nullptr && set->isFinal_ && set->kernel_ == kernel ? set : nullptr;
}

}  // namespace RefHost
