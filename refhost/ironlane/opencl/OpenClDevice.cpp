#include "refhost/ironlane/opencl/OpenClDevice.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "refhost/ResultCodes.h"
#include "refhost/ironlane/ArgumentSet.h"
#include "refhost/ironlane/Trace.h"
#include "refhost/ironlane/opencl/OpenClDevices.h"
#include "refhost/ironlane/opencl/OpenClKernels.h"
#include "refhost/ironlane/opencl/OpenClStatus.h"
#include "refhost/orvcore/SharedObject.h"

namespace RefHost {

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

std::size_t RoundUp(std::size_t size, std::size_t group) {
  return (size + group - 1) / group * group;
}

class OpenClDevice final : public GPUDevice {
 public:
  OpenClDevice(cl::Device device, cl::Context context, cl::CommandQueue queue, DeviceInfo info)
      : device_(std::move(device)),
        context_(std::move(context)),
        queue_(std::move(queue)),
        info_(std::move(info)),
        kernels_(context_, device_, info_) {}
  OpenClDevice(const OpenClDevice&) = delete;
  OpenClDevice& operator=(const OpenClDevice&) = delete;
  ~OpenClDevice() override { queue_.finish(); }

  const DeviceInfo& Info() const override { return info_; }
  std::uint32_t BlockSide() const override { return 1; }

  IL::DeviceDescription GetDescription() const override {
    return {.platformKind = IL::kPlatformOpenCl,
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

  int UploadRows(std::uint64_t to, std::size_t rowBytes, std::size_t rowCount,
                 const RowsFunction& fill) override {
    const auto copy = [&](const cl::Buffer& buffer, std::byte* host, std::size_t offset,
                          std::size_t bytes, cl::Event& event) {
      return queue_.enqueueWriteBuffer(buffer, CL_FALSE, offset, bytes, host, nullptr, &event);
    };
    return Transfer("an upload", to, {rowBytes, rowCount}, copy, UploadPieces, fill);
  }

  int DownloadRows(std::uint64_t from, std::size_t rowBytes, std::size_t rowCount,
                   const RowsFunction& take) override {
    const auto copy = [&](const cl::Buffer& buffer, std::byte* host, std::size_t offset,
                          std::size_t bytes, cl::Event& event) {
      return queue_.enqueueReadBuffer(buffer, CL_FALSE, offset, bytes, host, nullptr, &event);
    };
    return Transfer("a download", from, {rowBytes, rowCount}, copy, DownloadPieces, take);
  }

  int Copy(std::uint64_t from, std::uint64_t to, std::size_t bytes) override {
    const auto source = MemoryAt(from);
    const auto destination = MemoryAt(to);
    if (!source.has_value() || !destination.has_value()) return kInvalidLaunch;
    return ResultOf(queue_.enqueueCopyBuffer(*source, *destination, 0, 0, bytes), "a copy");
  }

  int Finish() override { return ResultOf(queue_.finish(), "waiting for the device"); }

  IL::KernelHandle LoadKernel(std::string_view module, std::string_view kernel) override {
    return kernels_.Find(module, kernel);
  }

  int CreateArguments(IL::KernelHandle kernel, std::uint32_t byValueBytes,
                      orvcore::classref::InterfaceRef<IL::IArgumentSet>& arguments) override {
    if (kernels_.At(kernel) == nullptr) return kInvalidLaunch;
    arguments = MakeShared<IL::IArgumentSet, ArgumentSet>(kernel, byValueBytes);
    return 0;
  }

  int Launch(IL::KernelHandle kernel,
             const orvcore::classref::InterfaceRef<IL::IArgumentSet>& arguments,
             std::uint32_t gridX, std::uint32_t gridY, std::uint32_t blockX, std::uint32_t blockY,
             std::uint32_t /*flags*/) override {
    const ArgumentSet* set = FinalArguments(arguments, kernel);
    if (set == nullptr || !HasMemoryOf(set->Arguments())) return kInvalidLaunch;
    for (const std::uint32_t size : {gridX, gridY, blockX, blockY}) {
      if (size == 0) return kInvalidLaunch;
    }
    OpenClKernel* known = kernels_.At(kernel);
    if (known == nullptr) return kInvalidLaunch;

    // Blocks of one leave the size of work-groups to the device. All of them are whole: kernels
    // look for themselves where a frame ends.
    const bool isLeftToDevice = blockX == 1 && blockY == 1;
    const std::size_t groupX = isLeftToDevice ? known->groupX : blockX;
    const std::size_t groupY = isLeftToDevice ? known->groupY : blockY;
    const cl::NDRange items(RoundUp(std::size_t{gridX} * blockX, groupX),
                            RoundUp(std::size_t{gridY} * blockY, groupY));
    const std::lock_guard lock(launchMutex_);
    cl_int status = PassArguments(set->Arguments(), known->kernel);
    if (status == CL_SUCCESS) {
      status = queue_.enqueueNDRangeKernel(known->kernel, cl::NullRange, items,
                                           cl::NDRange(groupX, groupY));
    }
    if (status == CL_SUCCESS) status = queue_.flush();
    return ResultOf(status, "a launch");
  }

 private:
  /// One piece of a transfer: `copy` gives it to the queue. What is on its way when it goes out of
  /// scope is waited for.
  template <class Copy>
  class Copier final : public PieceCopier {
   public:
    Copier(const char* what, const cl::Buffer& buffer, std::byte* ring, const Copy& copy)
        : what_(what), buffer_(buffer), ring_(ring), copy_(copy) {}
    Copier(const Copier&) = delete;
    Copier& operator=(const Copier&) = delete;
    ~Copier() {
      for (std::size_t slot = 0; slot < events_.size(); ++slot) Wait(slot);
    }

    int Begin(std::size_t slot, std::size_t ringOffset, std::size_t deviceOffset,
              std::size_t bytes) override {
      return ResultOf(copy_(buffer_, ring_ + ringOffset, deviceOffset, bytes, events_[slot]),
                      what_);
    }
    int Wait(std::size_t slot) override {
      const cl::Event event = std::exchange(events_[slot], {});
      return event() == nullptr ? 0 : ResultOf(event.wait(), what_);
    }

   private:
    const char* what_;
    const cl::Buffer& buffer_;
    std::byte* ring_;
    const Copy& copy_;
    std::array<cl::Event, RowPieces::kMostSlots> events_;
  };

  template <class Copy, class Run>
  int Transfer(const char* what, std::uint64_t memory, const RowPieces& pieces, const Copy& copy,
               const Run& run, const RowsFunction& rows) {
    const auto buffer = MemoryAt(memory);
    if (!buffer.has_value() || buffer->getInfo<CL_MEM_SIZE>() < pieces.rowBytes * pieces.rowCount) {
      return kInvalidLaunch;
    }
    const auto ring = std::make_unique_for_overwrite<std::byte[]>(pieces.RingBytes());
    Copier copier(what, *buffer, ring.get(), copy);
    return run(pieces, pieces.RingAt(ring.get()), copier, rows);
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

  cl::Device device_;
  cl::Context context_;
  cl::CommandQueue queue_;
  DeviceInfo info_;
  std::uint64_t identity_ = NewContextIdentity();
  OpenClKernels kernels_;

  std::mutex launchMutex_;
  std::mutex mutex_;
  std::map<std::uint64_t, cl::Buffer> memory_;
};

}  // namespace

std::vector<DeviceInfo> ListOpenClDevices() {
  std::vector<DeviceInfo> infos;
  for (const cl::Device& device : FindOpenClDevices()) {
    infos.push_back(DescribeOpenClDevice(device, static_cast<std::int32_t>(infos.size())));
  }
  return infos;
}

std::shared_ptr<GPUDevice> OpenOpenClDevice(std::int32_t ordinal) {
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

}  // namespace RefHost
