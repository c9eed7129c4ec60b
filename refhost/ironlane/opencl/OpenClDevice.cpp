#include "refhost/ironlane/opencl/OpenClDevice.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "refhost/ironlane/ArgumentSet.h"
#include "refhost/ironlane/BinaryCache.h"
#include "refhost/ironlane/ContextIdentity.h"
#include "refhost/ironlane/ResultCodes.h"
#include "refhost/ironlane/Trace.h"
#include "refhost/ironlane/opencl/OpenClDevices.h"
#include "refhost/ironlane/opencl/OpenClProgram.h"
#include "refhost/ironlane/opencl/OpenClStatus.h"
#include "refhost/orvcore/SharedObject.h"

namespace IL {

namespace {

/// Gives arguments to a kernel one after another.
class ArgumentPasser {
 public:
  explicit ArgumentPasser(cl::Kernel& kernel) : kernel_(kernel) {}

  void PassMemory(std::uint64_t pointer) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a memory object's handle travels as a number.
    auto* buffer = reinterpret_cast<cl_mem>(pointer);
    Pass(sizeof(cl_mem), buffer == nullptr ? nullptr : &buffer);
  }
  void PassValue(const std::vector<std::byte>& bytes) { Pass(bytes.size(), bytes.data()); }

  /// The first failure, also that the kernel takes another number of arguments.
  cl_int Status() const {
    if (status_ != CL_SUCCESS) return status_;
    return kernel_.getInfo<CL_KERNEL_NUM_ARGS>() == count_ ? CL_SUCCESS : CL_INVALID_KERNEL_ARGS;
  }

 private:
  void Pass(std::size_t bytes, const void* value) {
    if (status_ == CL_SUCCESS) status_ = kernel_.setArg(count_++, bytes, value);
  }

  cl::Kernel& kernel_;
  cl_uint count_ = 0;
  cl_int status_ = CL_SUCCESS;
};

/// A frame is two arguments: its memory, and the descriptor.
cl_int PassArguments(const std::vector<Argument>& arguments, cl::Kernel& kernel) {
  ArgumentPasser passer(kernel);
  for (const Argument& argument : arguments) {
    if (argument.kind != Argument::Kind::Value) passer.PassMemory(argument.Pointer());
    if (argument.kind != Argument::Kind::Memory) passer.PassValue(argument.bytes);
  }
  return passer.Status();
}

class OpenClDevice final : public GpuDevice {
 public:
  OpenClDevice(cl::Device device, cl::Context context, cl::CommandQueue queue, DeviceInfo info)
      : device_(std::move(device)),
        context_(std::move(context)),
        queue_(std::move(queue)),
        info_(std::move(info)) {}
  OpenClDevice(const OpenClDevice&) = delete;
  OpenClDevice& operator=(const OpenClDevice&) = delete;
  ~OpenClDevice() override { queue_.finish(); }

  const DeviceInfo& Info() const override { return info_; }

  DeviceDescription GetDescription() const override {
    return {.platformKind = kPlatformOpenCl,
            .ordinal = info_.ordinal,
            .architectureCode = 0,
            .contextIdentity = identity_};
  }

  int Allocate(std::size_t bytes, std::uint64_t& pointer) override {
    cl_int status = CL_SUCCESS;
    const cl::Buffer buffer(context_, CL_MEM_READ_WRITE, bytes, nullptr, &status);
    if (const int result = ResultOf(status, "allocating device memory"); result < 0) return result;
    const std::lock_guard lock(mutex_);
    pointer = reinterpret_cast<std::uint64_t>(buffer());
    memory_.emplace(pointer, buffer);
    return 0;
  }

  void Free(std::uint64_t pointer) override {
    const std::lock_guard lock(mutex_);
    memory_.erase(pointer);
  }

  int Upload(const void* from, std::uint64_t to, std::size_t bytes) override {
    const auto buffer = MemoryAt(to);
    if (!buffer.has_value()) return kInvalidLaunch;
    return ResultOf(queue_.enqueueWriteBuffer(*buffer, CL_TRUE, 0, bytes, from), "an upload");
  }

  int Download(std::uint64_t from, void* to, std::size_t bytes) override {
    const auto buffer = MemoryAt(from);
    if (!buffer.has_value()) return kInvalidLaunch;
    return ResultOf(queue_.enqueueReadBuffer(*buffer, CL_TRUE, 0, bytes, to), "a download");
  }

  int Copy(std::uint64_t from, std::uint64_t to, std::size_t bytes) override {
    const auto source = MemoryAt(from);
    const auto destination = MemoryAt(to);
    if (!source.has_value() || !destination.has_value()) return kInvalidLaunch;
    return ResultOf(queue_.enqueueCopyBuffer(*source, *destination, 0, 0, bytes), "a copy");
  }

  int Finish() override { return ResultOf(queue_.finish(), "waiting for the device"); }

  KernelHandle LoadKernel(std::string_view module, std::string_view kernel) override {
    const std::lock_guard lock(mutex_);
    const auto known = kernels_.find({std::string(module), std::string(kernel)});
    if (known != kernels_.end()) return &known->second;
    const cl::Program* program = ProgramOf(module);
    if (program == nullptr) return nullptr;
    cl_int status = CL_SUCCESS;
    cl::Kernel made(*program, std::string(kernel).c_str(), &status);
    if (ResultOf(status, "finding kernel " + std::string(kernel)) < 0) return nullptr;
    return &kernels_.emplace(std::pair(module, kernel), std::move(made)).first->second;
  }

  int CreateArguments(KernelHandle kernel, std::uint32_t byValueBytes,
                      orvcore::classref::InterfaceRef<IArgumentSet>& arguments) override {
    if (KernelAt(kernel) == nullptr) return kInvalidLaunch;
    arguments = orvcore::classref::MakeShared<IArgumentSet, ArgumentSet>(kernel, byValueBytes);
    return 0;
  }

  int Launch(KernelHandle kernel, const orvcore::classref::InterfaceRef<IArgumentSet>& arguments,
             std::uint32_t gridX, std::uint32_t gridY, std::uint32_t blockX, std::uint32_t blockY,
             std::uint32_t /*flags*/) override {
    const ArgumentSet* set = FinalArguments(arguments, kernel);
    if (set == nullptr || !HasMemoryOf(set->Arguments())) return kInvalidLaunch;
    for (const std::uint32_t size : {gridX, gridY, blockX, blockY}) {
      if (size == 0) return kInvalidLaunch;
    }
    cl::Kernel* known = KernelAt(kernel);
    if (known == nullptr) return kInvalidLaunch;

    const cl::NDRange items(std::size_t{gridX} * blockX, std::size_t{gridY} * blockY);
    // Blocks of one leave the size of work-groups to the device.
    const cl::NDRange group =
        blockX == 1 && blockY == 1 ? cl::NDRange() : cl::NDRange(blockX, blockY);
    const std::lock_guard lock(launchMutex_);
    cl_int status = PassArguments(set->Arguments(), *known);
    if (status == CL_SUCCESS) {
      status = queue_.enqueueNDRangeKernel(*known, cl::NullRange, items, group);
    }
    if (status == CL_SUCCESS) status = queue_.flush();
    return ResultOf(status, "a launch");
  }

 private:
  /// Null when the module is not known or does not build.
  const cl::Program* ProgramOf(std::string_view module) {
    const auto built = programs_.find(module);
    if (built != programs_.end()) return &built->second;
    const kernels::KernelModule* source = kernels::FindKernelModule(module);
    if (source == nullptr) {
      TraceMessage("OpenCL : there is no module " + std::string(module));
      return nullptr;
    }
    auto program = BuildOpenClProgram(context_, device_, info_, *source, cache_);
    if (!program.has_value()) return nullptr;
    return &programs_.emplace(module, *std::move(program)).first->second;
  }

  /// Whether all memory that a kernel is to see is the device's; null is none.
  bool HasMemoryOf(const std::vector<Argument>& arguments) {
    return std::all_of(arguments.begin(), arguments.end(), [&](const Argument& argument) {
      return argument.kind == Argument::Kind::Value || argument.Pointer() == 0 ||
             MemoryAt(argument.Pointer()).has_value();
    });
  }

  std::optional<cl::Buffer> MemoryAt(std::uint64_t pointer) {
    const std::lock_guard lock(mutex_);
    const auto found = memory_.find(pointer);
    return found == memory_.end() ? std::nullopt : std::optional(found->second);
  }

  cl::Kernel* KernelAt(KernelHandle handle) {
    const std::lock_guard lock(mutex_);
    for (auto& [name, kernel] : kernels_) {
      if (&kernel == handle) return &kernel;
    }
    return nullptr;
  }

  cl::Device device_;
  cl::Context context_;
  cl::CommandQueue queue_;
  DeviceInfo info_;
  std::uint64_t identity_ = NewContextIdentity();
  BinaryCache cache_;

  std::mutex launchMutex_;
  std::mutex mutex_;
  std::map<std::uint64_t, cl::Buffer> memory_;
  std::map<std::string, cl::Program, std::less<>> programs_;
  std::map<std::pair<std::string, std::string>, cl::Kernel> kernels_;
};

}  // namespace

std::vector<DeviceInfo> ListOpenClDevices() {
  std::vector<DeviceInfo> infos;
  for (const cl::Device& device : FindOpenClDevices()) {
    infos.push_back(DescribeOpenClDevice(device, static_cast<std::int32_t>(infos.size())));
  }
  return infos;
}

std::shared_ptr<GpuDevice> OpenOpenClDevice(std::int32_t ordinal) {
  const std::vector<cl::Device> devices = FindOpenClDevices();
  if (ordinal < 0 || static_cast<std::size_t>(ordinal) >= devices.size()) {
    TraceMessage("OpenCL : there is no device " + std::to_string(ordinal));
    return nullptr;
  }
  const cl::Device& device = devices[static_cast<std::size_t>(ordinal)];
  DeviceInfo info = DescribeOpenClDevice(device, ordinal);
  if (!info.obstacle.empty()) {
    TraceMessage("OpenCL : " + info.name + " cannot be used : " + info.obstacle);
    return nullptr;
  }
  cl_int status = CL_SUCCESS;
  const cl::Context context(device, nullptr, nullptr, nullptr, &status);
  if (ResultOf(status, "making a context") < 0) return nullptr;
  const cl::CommandQueue queue(context, device, cl::QueueProperties::None, &status);
  if (ResultOf(status, "making a queue") < 0) return nullptr;
  return std::make_shared<OpenClDevice>(device, context, queue, std::move(info));
}

}  // namespace IL
