#include "refhost/ironlane/cuda/CudaArguments.h"

#include <cstring>

#include "refhost/ironlane/ResultCodes.h"

namespace IL {

namespace {
/// Size of a `Quillon::GPUFrameDescriptor`.
constexpr std::size_t kFrameDescriptorBytes = 32;
}  // namespace

void* CudaArguments::QueryInterface(std::string_view qualifiedName) noexcept {
  if (qualifiedName != orvcore::utility::QualifiedName<IArgumentSet>()) return nullptr;
  return static_cast<IArgumentSet*>(this);
}

void CudaArguments::Push(const void* value, std::size_t bytes) {
  std::vector<std::byte> copy(bytes);
  std::memcpy(copy.data(), value, bytes);
  arguments_.push_back(std::move(copy));
}

int CudaArguments::SetMemoryArgument(std::uint64_t buffer, int /*flags*/) {
  if (isFinal_) return kInvalidLaunch;
  Push(&buffer, sizeof(buffer));
  return 0;
}

int CudaArguments::SetFrameArgument(const Quillon::GPUFrameDescriptor* descriptor) {
  if (isFinal_ || descriptor == nullptr) return kInvalidLaunch;
  Push(descriptor, kFrameDescriptorBytes);
  return 0;
}

int CudaArguments::SetValueArgument(const void* value, std::size_t bytes,
                                    std::size_t /*alignment*/) {
  if (isFinal_ || value == nullptr || bytes == 0) return kInvalidLaunch;
  Push(value, bytes);
  valueBytes_ += bytes;
  return 0;
}

int CudaArguments::Finalize() {
  if (isFinal_ || valueBytes_ < byValueBytes_) return kInvalidLaunch;
  isFinal_ = true;
  return 0;
}

std::vector<void*> CudaArguments::Pointers() {
  std::vector<void*> pointers;
  for (auto& argument : arguments_) pointers.push_back(argument.data());
  return pointers;
}

}  // namespace IL
