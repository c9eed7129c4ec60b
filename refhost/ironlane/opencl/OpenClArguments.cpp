#include "refhost/ironlane/opencl/OpenClArguments.h"

#include <cstring>

#include "refhost/ironlane/ResultCodes.h"

namespace IL {

namespace {

/// Size of a `Quillon::GPUFrameDescriptor`, which begins with the frame's device pointer.
constexpr std::size_t kFrameDescriptorBytes = 32;

std::vector<std::byte> BytesOf(const void* value, std::size_t bytes) {
  std::vector<std::byte> copy(bytes);
  std::memcpy(copy.data(), value, bytes);
  return copy;
}

}  // namespace

void* OpenClArguments::QueryInterface(std::string_view qualifiedName) noexcept {
  if (qualifiedName != orvcore::utility::QualifiedName<IArgumentSet>()) return nullptr;
  return static_cast<IArgumentSet*>(this);
}

int OpenClArguments::SetMemoryArgument(std::uint64_t buffer, int /*flags*/) {
  if (isFinal_) return kInvalidLaunch;
  arguments_.emplace_back(buffer);
  return 0;
}

int OpenClArguments::SetFrameArgument(const Quillon::GPUFrameDescriptor* descriptor) {
  if (isFinal_ || descriptor == nullptr) return kInvalidLaunch;
  std::uint64_t pixels = 0;
  std::memcpy(&pixels, descriptor, sizeof(pixels));
  arguments_.emplace_back(pixels);
  arguments_.emplace_back(BytesOf(descriptor, kFrameDescriptorBytes));
  return 0;
}

int OpenClArguments::SetValueArgument(const void* value, std::size_t bytes,
                                      std::size_t /*alignment*/) {
  if (isFinal_ || value == nullptr || bytes == 0) return kInvalidLaunch;
  arguments_.emplace_back(BytesOf(value, bytes));
  valueBytes_ += bytes;
  return 0;
}

int OpenClArguments::Finalize() {
  if (isFinal_ || valueBytes_ != byValueBytes_) return kInvalidLaunch;
  isFinal_ = true;
  return 0;
}

std::vector<std::uint64_t> OpenClArguments::Memory() const {
  std::vector<std::uint64_t> memory;
  for (const auto& argument : arguments_) {
    const auto* buffer = std::get_if<std::uint64_t>(&argument);
    if (buffer != nullptr && *buffer != 0) memory.push_back(*buffer);
  }
  return memory;
}

cl_int OpenClArguments::PassTo(cl::Kernel& kernel) const {
  if (kernel.getInfo<CL_KERNEL_NUM_ARGS>() != arguments_.size()) return CL_INVALID_KERNEL_ARGS;
  for (cl_uint i = 0; i < arguments_.size(); ++i) {
    cl_int status = CL_SUCCESS;
    if (const auto* value = std::get_if<Value>(&arguments_[i])) {
      status = kernel.setArg(i, value->size(), value->data());
    } else {
      // NOLINTNEXTLINE(performance-no-int-to-ptr): a memory object's handle travels as a number.
      auto* buffer = reinterpret_cast<cl_mem>(std::get<std::uint64_t>(arguments_[i]));
      status = kernel.setArg(i, sizeof(cl_mem), buffer == nullptr ? nullptr : &buffer);
    }
    if (status != CL_SUCCESS) return status;
  }
  return CL_SUCCESS;
}

}  // namespace IL
