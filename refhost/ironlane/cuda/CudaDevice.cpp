#include "refhost/ironlane/cuda/CudaDevice.h"

#include <array>
#include <mutex>
#include <optional>
#include <string>

#include "kernels/KernelModules.h"
#include "refhost/ironlane/ArgumentSet.h"
#include "refhost/ironlane/ContextIdentity.h"
#include "refhost/ironlane/ResultCodes.h"
#include "refhost/ironlane/Trace.h"
#include "refhost/ironlane/cuda/CudaApi.h"
#include "refhost/ironlane/cuda/CudaModules.h"
#include "refhost/orvcore/SharedObject.h"

namespace IL {

namespace {

// Of the driver's enumeration of attributes.
constexpr int kComputeCapabilityMajor = 75;
constexpr int kComputeCapabilityMinor = 76;

/// The context as current one of this thread.
class Current {
 public:
  Current(const CudaApi& api, CudaContext context)
      : api_(api), result_(api.Check(api.CtxPushCurrent(context), "cuCtxPushCurrent")) {}
  Current(const Current&) = delete;
  Current& operator=(const Current&) = delete;
  ~Current() {
    CudaContext popped = nullptr;
    if (result_ == 0) api_.CtxPopCurrent(&popped);
  }
  int Result() const { return result_; }

 private:
  const CudaApi& api_;
  int result_;
};

/// Where each argument lies, as a launch takes them.
std::vector<void*> PointersTo(const std::vector<Argument>& arguments) {
  std::vector<void*> pointers;
  pointers.reserve(arguments.size());
  // The driver's interface is not const; it reads.
  for (const Argument& argument : arguments) {
    pointers.push_back(const_cast<std::byte*>(argument.bytes.data()));
  }
  return pointers;
}

class CudaDevice final : public GpuDevice {
 public:
  /// Takes over the retained context.
  CudaDevice(const CudaApi& api, CudaDeviceId id, CudaContext context, CudaStream stream,
             DeviceInfo info, const std::string& capability)
      : api_(api),
        id_(id),
        context_(context),
        stream_(stream),
        info_(std::move(info)),
        modules_(api, info_.name + '\n' + capability + '\n' + info_.driver) {}
  CudaDevice(const CudaDevice&) = delete;
  CudaDevice& operator=(const CudaDevice&) = delete;
  ~CudaDevice() override {
    {
      const Current current(api_, context_);
      if (current.Result() == 0) {
        api_.StreamSynchronize(stream_);
        modules_.UnloadAll();
        api_.StreamDestroy(stream_);
      }
    }
    api_.DevicePrimaryCtxRelease(id_);
  }

  const DeviceInfo& Info() const override { return info_; }

  DeviceDescription GetDescription() const override {
    return {.platformKind = kPlatformCuda,
            .ordinal = info_.ordinal,
            .architectureCode = 3,  // blocks of 16 by 16
            .contextIdentity = identity_};
  }

  int Allocate(std::size_t bytes, std::uint64_t& pointer) override {
    return Call("cuMemAlloc", [&] {
      std::uint64_t made = 0;
      const CudaResult result = api_.MemAlloc(&made, bytes);
      if (result == 0) pointer = made;
      return result;
    });
  }

  void Free(std::uint64_t pointer) override {
    Call("cuMemFree", [&] {
      // What was given before may still be at work on it.
      api_.StreamSynchronize(stream_);
      return api_.MemFree(pointer);
    });
  }

  int Upload(const void* from, std::uint64_t to, std::size_t bytes) override {
    return Call("an upload", [&] {
      const CudaResult result = api_.MemcpyHtoDAsync(to, from, bytes, stream_);
      return result == 0 ? api_.StreamSynchronize(stream_) : result;
    });
  }

  int Download(std::uint64_t from, void* to, std::size_t bytes) override {
    return Call("a download", [&] {
      const CudaResult result = api_.MemcpyDtoHAsync(to, from, bytes, stream_);
      return result == 0 ? api_.StreamSynchronize(stream_) : result;
    });
  }

  int Copy(std::uint64_t from, std::uint64_t to, std::size_t bytes) override {
    return Call("a copy", [&] { return api_.MemcpyDtoDAsync(to, from, bytes, stream_); });
  }

  int Finish() override {
    return Call("cuStreamSynchronize", [&] { return api_.StreamSynchronize(stream_); });
  }

  KernelHandle LoadKernel(std::string_view module, std::string_view kernel) override {
    const std::lock_guard lock(mutex_);
    const Current current(api_, context_);
    return current.Result() == 0 ? modules_.Find(module, kernel) : nullptr;
  }

  int CreateArguments(KernelHandle kernel, std::uint32_t byValueBytes,
                      orvcore::classref::InterfaceRef<IArgumentSet>& arguments) override {
    if (!IsKnown(kernel)) return kInvalidLaunch;
    arguments = orvcore::classref::MakeShared<IArgumentSet, ArgumentSet>(kernel, byValueBytes);
    return 0;
  }

  int Launch(KernelHandle kernel, const orvcore::classref::InterfaceRef<IArgumentSet>& arguments,
             std::uint32_t gridX, std::uint32_t gridY, std::uint32_t blockX, std::uint32_t blockY,
             std::uint32_t /*flags*/) override {
    const ArgumentSet* set = FinalArguments(arguments, kernel);
    if (set == nullptr || !IsKnown(kernel)) return kInvalidLaunch;
    for (const std::uint32_t size : {gridX, gridY, blockX, blockY}) {
      if (size == 0) return kInvalidLaunch;
    }
    return Call("cuLaunchKernel", [&] {
      std::vector<void*> pointers = PointersTo(set->Arguments());
      return api_.LaunchKernel(static_cast<CudaFunction>(kernel), gridX, gridY, 1, blockX, blockY,
                               1, 0, stream_, pointers.data(), nullptr);
    });
  }

 private:
  /// The result of driver calls made in the context.
  template <class Function>
  int Call(const char* what, const Function& function) {
    const Current current(api_, context_);
    return current.Result() < 0 ? current.Result() : api_.Check(function(), what);
  }

  bool IsKnown(KernelHandle kernel) {
    const std::lock_guard lock(mutex_);
    return modules_.Has(kernel);
  }

  const CudaApi& api_;
  CudaDeviceId id_;
  CudaContext context_;
  CudaStream stream_;
  DeviceInfo info_;
  std::uint64_t identity_ = NewContextIdentity();
  std::mutex mutex_;
  CudaModules modules_;
};

std::string DriverVersion(const CudaApi& api) {
  int version = 0;
  if (api.Check(api.DriverGetVersion(&version), "cuDriverGetVersion") < 0) return "unknown";
  return std::to_string(version / 1000) + '.' + std::to_string(version % 1000 / 10);
}

int AttributeOf(const CudaApi& api, CudaDeviceId id, int attribute) {
  int value = 0;
  api.Check(api.DeviceGetAttribute(&value, attribute, id), "cuDeviceGetAttribute");
  return value;
}

std::string CapabilityOf(const CudaApi& api, CudaDeviceId id) {
  return std::to_string(AttributeOf(api, id, kComputeCapabilityMajor)) + '.' +
         std::to_string(AttributeOf(api, id, kComputeCapabilityMinor));
}

/// Nothing where the driver does not answer.
std::optional<DeviceInfo> Describe(const CudaApi& api, CudaDeviceId id, std::int32_t ordinal) {
  std::array<char, 256> name{};
  std::size_t bytes = 0;
  if (api.Check(api.DeviceGetName(name.data(), static_cast<int>(name.size()), id),
                "cuDeviceGetName") < 0 ||
      api.Check(api.DeviceTotalMem(&bytes, id), "cuDeviceTotalMem") < 0) {
    return std::nullopt;
  }
  DeviceInfo info;
  info.platformKind = kPlatformCuda;
  info.ordinal = ordinal;
  info.platform = "NVIDIA CUDA";
  info.name = name.data();
  info.driver = DriverVersion(api);
  info.memoryBytes = bytes;
  if (kernels::FindKernelModule("ToneMapMain")->ptx.empty()) {
    info.obstacle = "built without a compiler for CUDA";
  }
  return info;
}

int CountDevices(const CudaApi& api) {
  int count = 0;
  return api.Check(api.DeviceGetCount(&count), "cuDeviceGetCount") < 0 ? 0 : count;
}

/// A stream of its own in the device's primary context; null when it cannot be made.
CudaStream MakeStream(const CudaApi& api, CudaContext context) {
  constexpr unsigned kNonBlocking = 1;
  const Current current(api, context);
  CudaStream stream = nullptr;
  if (current.Result() < 0) return nullptr;
  api.Check(api.StreamCreate(&stream, kNonBlocking), "cuStreamCreate");
  return stream;
}

}  // namespace

std::vector<DeviceInfo> ListCudaDevices() {
  std::vector<DeviceInfo> infos;
  const CudaApi* api = GetCudaApi();
  const int count = api == nullptr ? 0 : CountDevices(*api);
  for (int ordinal = 0; ordinal < count; ++ordinal) {
    CudaDeviceId id = 0;
    if (api->Check(api->DeviceGet(&id, ordinal), "cuDeviceGet") < 0) continue;
    if (auto info = Describe(*api, id, ordinal)) infos.push_back(*std::move(info));
  }
  return infos;
}

std::shared_ptr<GpuDevice> OpenCudaDevice(std::int32_t ordinal) {
  const CudaApi* api = GetCudaApi();
  if (api == nullptr || ordinal < 0 || ordinal >= CountDevices(*api)) {
    TraceMessage("CUDA : there is no device " + std::to_string(ordinal));
    return nullptr;
  }
  CudaDeviceId id = 0;
  if (api->Check(api->DeviceGet(&id, ordinal), "cuDeviceGet") < 0) return nullptr;
  auto info = Describe(*api, id, ordinal);
  if (!info.has_value()) return nullptr;
  if (!info->obstacle.empty()) {
    TraceMessage("CUDA : " + info->name + " cannot be used : " + info->obstacle);
    return nullptr;
  }
  CudaContext context = nullptr;
  if (api->Check(api->DevicePrimaryCtxRetain(&context, id), "cuDevicePrimaryCtxRetain") < 0) {
    return nullptr;
  }
  CudaStream stream = MakeStream(*api, context);
  if (stream == nullptr) {
    api->DevicePrimaryCtxRelease(id);
    return nullptr;
  }
  const std::string capability = CapabilityOf(*api, id);
  return std::make_shared<CudaDevice>(*api, id, context, stream, *std::move(info), capability);
}

}  // namespace IL
