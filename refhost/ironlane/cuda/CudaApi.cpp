#include "refhost/ironlane/cuda/CudaApi.h"

#include <mutex>
#include <optional>

#include "host/os/DynamicLibrary.h"
#include "refhost/ResultCodes.h"
#include "refhost/ironlane/Trace.h"

namespace RefHost {

namespace {

template <class Function>
bool Find(HMODULE driver, const char* symbol, Function& function) {
  // Compilers warn of casts between function types, but for this one in between.
  using AnyFunction = void (*)();
  function =
      reinterpret_cast<Function>(reinterpret_cast<AnyFunction>(GetProcAddress(driver, symbol)));
  return function != nullptr;
}

std::optional<CudaApi> OpenApi() {
  // Never closed: the driver's threads may outlive us.
  const HMODULE driver = LoadLibraryW(L"nvcuda.dll");
  if (driver == nullptr) return std::nullopt;
  CudaApi api;
#define QUILLON_CUDA_FUNCTION(name, symbol, parameters) \
  if (!Find(driver, symbol, api.name)) {                \
    TraceMessage("CUDA : the driver lacks " symbol);    \
    return std::nullopt;                                \
  }
#define QUILLON_CUDA_OPTIONAL_FUNCTION(name, symbol, parameters) Find(driver, symbol, api.name);
#include "refhost/ironlane/cuda/CudaFunctions.inc"
  if (api.Check(api.Init(0), "cuInit") < 0) return std::nullopt;
  return api;
}

}  // namespace

std::string CudaApi::NameOf(CudaResult result) const {
  const char* name = nullptr;
  if (GetErrorName(result, &name) == 0 && name != nullptr) return name;
  return "error " + std::to_string(result);
}

int CudaApi::Check(CudaResult result, const std::string& call) const {
  if (result == 0) return 0;
  TraceMessage("CUDA : " + call + " : " + NameOf(result));
  switch (result) {
    case kCudaInvalidValue:
      return kInvalidLaunch;
    case kCudaOutOfMemory:
      return kOutOfDeviceMemory;
    default:
      return kDeviceFailed;
  }
}

const CudaApi* GetCudaApi() {
  static std::mutex mutex;
  static std::optional<CudaApi> api;
  const std::lock_guard lock(mutex);
  if (!api.has_value()) api = OpenApi();
  return api.has_value() ? &*api : nullptr;
}

}  // namespace RefHost
