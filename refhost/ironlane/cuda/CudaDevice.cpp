#include "refhost/ironlane/cuda/CudaDevice.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <string>
#include <utility>

#include "refhost/ResultCodes.h"
#include "refhost/ironlane/ArgumentSet.h"
#include "refhost/ironlane/Trace.h"
#include "refhost/ironlane/cuda/CudaApi.h"
#include "refhost/ironlane/cuda/CudaContext.h"
#include "refhost/ironlane/cuda/CudaDevices.h"
#include "refhost/ironlane/cuda/CudaMemory.h"
#include "refhost/ironlane/cuda/CudaModules.h"
#include "refhost/ironlane/cuda/CudaQueues.h"
#include "refhost/ironlane/cuda/CudaStaging.h"
#include "refhost/orvcore/SharedObject.h"

namespace RefHost {

namespace {

/// Where each argument lies, as a launch takes them, and a null behind the last.
std::vector<void*> PointersTo(const std::vector<Argument>& arguments) {
  std::vector<void*> pointers;
  pointers.reserve(arguments.size() + 1);
  // The driver's interface is not const; it reads.
  for (const Argument& argument : arguments) {
    pointers.push_back(const_cast<std::byte*>(argument.bytes.data()));
  }
  pointers.push_back(nullptr);
  return pointers;
}

/// The memory that a launch reads or writes: a frame's, or a buffer's.
std::vector<std::uint64_t> MemoryOf(const std::vector<Argument>& arguments) {
  std::vector<std::uint64_t> pointers;
  for (const Argument& argument : arguments) {
    if (argument.kind == Argument::Kind::Value || argument.Pointer() == 0) continue;
    pointers.push_back(argument.Pointer());
  }
  return pointers;
}

/// Whether a kernel has these parameters; true where the driver does not tell.
bool FitsKernel(const std::vector<Argument>& arguments, const CudaKernel& kernel) {
  if (kernel.parameterBytes.empty()) return true;
  return std::equal(arguments.begin(), arguments.end(), kernel.parameterBytes.begin(),
                    kernel.parameterBytes.end(), [](const Argument& argument, std::size_t bytes) {
                      return argument.bytes.size() == bytes;
                    });
}

class CudaDevice final : public GPUDevice {
 public:
  /// Takes over the retained context.
  CudaDevice(const CudaApi& api, CudaContextHandle context, CudaDescription description)
      : context_(api, description.id, context, description.info.name),
        info_(std::move(description.info)),
        queues_(api),
        memory_(api, description.id, description.hasPools),
        staging_(api),
        modules_(context_, std::move(description.target)) {}
  CudaDevice(const CudaDevice&) = delete;
  CudaDevice& operator=(const CudaDevice&) = delete;
  ~CudaDevice() override {
    // All goes with a context that is lost.
    if (context_.IsLost()) return;
    context_.Call("waiting for the device", [&] { return queues_.WaitForAll(); });
    if (context_.IsLost()) return;
    context_.Call("cuMemFree", [&] { return memory_.GiveBackAll(); });
    context_.Call("freeing staging memory", [&] { return staging_.FreeAll(); });
    context_.Call("cuModuleUnload", [&] { return modules_.UnloadAll(); });
    context_.Call("cuStreamDestroy", [&] { return queues_.DestroyAll(); });
  }

  /// The first work in the context, which may have been lost before: 0 or a negative code.
  int Begin() {
    CudaQueue* queue = nullptr;
    return context_.Call("cuStreamCreate", [&] { return queues_.Mine(queue); });
  }

  const DeviceInfo& Info() const override { return info_; }
  std::uint32_t BlockSide() const override { return 16; }
  bool IsLost() const override { return context_.IsLost(); }

  IL::DeviceDescription GetDescription() const override {
    return {.platformKind = IL::kPlatformCuda,
            .ordinal = info_.ordinal,
            .architectureCode = 3,  // blocks of 16 by 16
            .contextIdentity = identity_};
  }

  int Allocate(std::size_t bytes, std::uint64_t& pointer) override {
    return Give("cuMemAlloc", {},
                [&](CudaQueue& queue) { return memory_.Allocate(bytes, queue, pointer); });
  }

  void Free(std::uint64_t pointer) override {
    if (context_.IsLost()) return;
    Give("cuMemFree", {}, [&](CudaQueue& queue) { return memory_.Free(pointer, queue); });
  }

  int UploadRows(std::uint64_t to, std::size_t rowBytes, std::size_t rowCount,
                 const RowsFunction& fill) override {
    const auto copy = [&](std::byte* host, std::size_t offset, std::size_t bytes,
                          CudaStream stream) {
      return context_.Api().MemcpyHtoDAsync(to + offset, host, bytes, stream);
    };
    return Transfer("an upload", to, {rowBytes, rowCount}, copy, UploadPieces, fill);
  }

  int DownloadRows(std::uint64_t from, std::size_t rowBytes, std::size_t rowCount,
                   const RowsFunction& take) override {
    const auto copy = [&](std::byte* host, std::size_t offset, std::size_t bytes,
                          CudaStream stream) {
      return context_.Api().MemcpyDtoHAsync(host, from + offset, bytes, stream);
    };
    return Transfer("a download", from, {rowBytes, rowCount}, copy, DownloadPieces, take);
  }

  int Copy(std::uint64_t from, std::uint64_t to, std::size_t bytes) override {
    if (!Holds(from, bytes) || !Holds(to, bytes)) return kInvalidLaunch;
    return Give("a copy", {from, to}, [&](CudaQueue& queue) {
      return context_.Api().MemcpyDtoDAsync(to, from, bytes, queue.stream);
    });
  }

  int Finish() override {
    return context_.Call("waiting for the device", [&] { return queues_.WaitForAll(); });
  }

  IL::KernelHandle LoadKernel(std::string_view module, std::string_view kernel) override {
    const CudaKernel* found = nullptr;
    context_.Call("loading a kernel", [&] {
      found = modules_.Find(module, kernel);
      return 0;
    });
    return const_cast<CudaKernel*>(found);
  }

  int CreateArguments(IL::KernelHandle kernel, std::uint32_t byValueBytes,
                      orvcore::classref::InterfaceRef<IL::IArgumentSet>& arguments) override {
    if (modules_.At(kernel) == nullptr) return kInvalidLaunch;
    arguments = MakeShared<IL::IArgumentSet, ArgumentSet>(kernel, byValueBytes);
    return 0;
  }

  int Launch(IL::KernelHandle handle,
             const orvcore::classref::InterfaceRef<IL::IArgumentSet>& arguments,
             std::uint32_t gridX, std::uint32_t gridY, std::uint32_t blockX, std::uint32_t blockY,
             std::uint32_t /*flags*/) override {
    const ArgumentSet* set = FinalArguments(arguments, handle);
    const CudaKernel* kernel = modules_.At(handle);
    if (set == nullptr || kernel == nullptr) return kInvalidLaunch;
    for (const std::uint32_t size : {gridX, gridY, blockX, blockY}) {
      if (size == 0) return kInvalidLaunch;
    }
    if (!FitsKernel(set->Arguments(), *kernel)) {
      TraceMessage("CUDA : a launch of " + kernel->name + " with arguments that are not its own");
      return kInvalidLaunch;
    }
    const std::vector<std::uint64_t> memory = MemoryOf(set->Arguments());
    for (const std::uint64_t pointer : memory) {
      if (Holds(pointer, 0)) continue;
      TraceMessage("CUDA : a launch of " + kernel->name + " on memory that is not of " +
                   info_.name);
      return kInvalidLaunch;
    }
    std::vector<void*> pointers = PointersTo(set->Arguments());
    return Give("cuLaunchKernel", memory, [&](CudaQueue& queue) {
      return context_.Api().LaunchKernel(kernel->function, gridX, gridY, 1, blockX, blockY, 1, 0,
                                         queue.stream, pointers.data(), nullptr);
    });
  }

 private:
  /// One piece of a transfer: `copy` gives it to a stream. What is on its way when it goes out of
  /// scope is waited for.
  template <class Copy>
  class Copier final : public PieceCopier {
   public:
    Copier(CudaDevice& device, const char* what, std::uint64_t memory, const CudaStage& stage,
           const Copy& copy)
        : device_(device), what_(what), memory_(memory), stage_(stage), copy_(copy) {}
    Copier(const Copier&) = delete;
    Copier& operator=(const Copier&) = delete;
    ~Copier() {
      for (std::size_t slot = 0; slot < isOnItsWay_.size(); ++slot) {
        if (isOnItsWay_[slot]) Wait(slot);
      }
    }

    int Begin(std::size_t slot, std::size_t ringOffset, std::size_t deviceOffset,
              std::size_t bytes) override {
      auto* host = static_cast<std::byte*>(stage_.memory) + ringOffset;
      const int result = device_.Give(what_, {memory_}, [&](CudaQueue& queue) {
        const CudaResult copied = copy_(host, deviceOffset, bytes, queue.stream);
        isOnItsWay_[slot] = copied == 0;
        return copied != 0 ? copied
                           : device_.context_.Api().EventRecord(stage_.events[slot], queue.stream);
      });
      return result;
    }
    int Wait(std::size_t slot) override {
      isOnItsWay_[slot] = false;
      return device_.context_.Call(
          what_, [&] { return device_.context_.Api().EventSynchronize(stage_.events[slot]); });
    }

   private:
    CudaDevice& device_;
    const char* what_;
    std::uint64_t memory_;
    const CudaStage& stage_;
    const Copy& copy_;
    std::array<bool, RowPieces::kMostSlots> isOnItsWay_{};
  };

  /// A stage for one transfer.
  class Lease {
   public:
    Lease(CudaDevice& device, std::size_t bytes) : device_(device) {
      result_ = device.context_.Call("allocating staging memory",
                                     [&] { return device.staging_.Take(bytes, stage_); });
    }
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;
    ~Lease() {
      if (result_ == 0) device_.staging_.Return(std::move(stage_));
    }
    int Result() const { return result_; }
    const CudaStage& Stage() const { return stage_; }

   private:
    CudaDevice& device_;
    CudaStage stage_;
    int result_;
  };

  template <class Copy, class Run>
  int Transfer(const char* what, std::uint64_t memory, const RowPieces& pieces, const Copy& copy,
               const Run& run, const RowsFunction& rows) {
    if (!Holds(memory, pieces.rowBytes * pieces.rowCount)) return kInvalidLaunch;
    const Lease lease(*this, pieces.RingBytes());
    if (lease.Result() < 0) return lease.Result();
    Copier copier(*this, what, memory, lease.Stage(), copy);
    return run(pieces, pieces.RingAt(lease.Stage().memory), copier, rows);
  }

  bool Holds(std::uint64_t pointer, std::size_t bytes) {
    const std::lock_guard lock(orderMutex_);
    return memory_.Holds(pointer, 0, bytes);
  }

  /// Gives work on this memory to the calling thread's stream. `give` returns the driver's result.
  template <class Function>
  int Give(const char* what, const std::vector<std::uint64_t>& memory, const Function& give) {
    return context_.Call(what, [&] {
      CudaQueue* queue = nullptr;
      CudaResult result = queues_.Mine(queue);
      const std::lock_guard lock(orderMutex_);
      for (const std::uint64_t pointer : memory) {
        if (result == 0) result = memory_.Use(pointer, *queue);
      }
      return result == 0 ? give(*queue) : result;
    });
  }

  CudaContext context_;
  const DeviceInfo info_;
  const std::uint64_t identity_ = NewContextIdentity();
  CudaQueues queues_;
  /// Held while work is given, so that the order of its uses of memory is that of the streams.
  std::mutex orderMutex_;
  CudaMemory memory_;
  CudaStaging staging_;
  CudaModules modules_;
};

/// Null, and a message to the trace, when it does not work; `isLost` then says whether that is a
/// context that an earlier failure ended.
std::shared_ptr<GPUDevice> Open(const CudaApi& api, const CudaDescription& description,
                                bool& isLost) {
  CudaContextHandle context = nullptr;
  if (api.Check(api.DevicePrimaryCtxRetain(&context, description.id), "cuDevicePrimaryCtxRetain") <
      0) {
    return nullptr;
  }
  auto device = std::make_shared<CudaDevice>(api, context, description);
  if (device->Begin() == 0) return device;
  isLost = device->IsLost();
  return nullptr;
}

}  // namespace

std::vector<DeviceInfo> ListCudaDevices() {
  std::vector<DeviceInfo> infos;
  const CudaApi* api = GetCudaApi();
  const std::int32_t count = api == nullptr ? 0 : CountCudaDevices(*api);
  for (std::int32_t ordinal = 0; ordinal < count; ++ordinal) {
    if (auto device = DescribeCudaDevice(*api, ordinal)) infos.push_back(std::move(device->info));
  }
  return infos;
}

std::shared_ptr<GPUDevice> OpenCudaDevice(std::int32_t ordinal) {
  const CudaApi* api = GetCudaApi();
  if (api == nullptr || ordinal < 0 || ordinal >= CountCudaDevices(*api)) {
    TraceMessage("CUDA : there is no device " + std::to_string(ordinal));
    return nullptr;
  }
  const auto description = DescribeCudaDevice(*api, ordinal);
  if (!description.has_value()) return nullptr;
  const DeviceInfo& info = description->info;
  if (!info.obstacle.empty()) {
    TraceMessage("CUDA : " + info.name + " cannot be used : " + info.obstacle);
    return nullptr;
  }
  bool isLost = false;
  auto device = Open(*api, *description, isLost);
  if (device != nullptr || !isLost) return device;
  // Whoever else has it cannot work in it either.
  if (api->Check(api->DevicePrimaryCtxReset(description->id), "cuDevicePrimaryCtxReset") < 0) {
    return nullptr;
  }
  return Open(*api, *description, isLost);
}

}  // namespace RefHost
