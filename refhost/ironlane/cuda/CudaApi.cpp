#include "refhost/ironlane/cuda/CudaApi.h"

#include <optional>
#include <string>

#include "host/os/DynamicLibrary.h"
#include "refhost/ironlane/ResultCodes.h"
#include "refhost/ironlane/Trace.h"

namespace IL {

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
#include "refhost/ironlane/cuda/CudaFunctions.inc"
  if (api.Check(api.Init(0), "cuInit") < 0) return std::nullopt;
  return api;
}

}  // namespace

int CudaApi::Check(CudaResult result, std::string_view call) const {
  constexpr CudaResult kOutOfMemory = 2;
  if (result == 0) return 0;
  const char* error = nullptr;
  if (GetErrorName(result, &error) != 0 || error == nullptr) error = "unknown error";
  TraceMessage("CUDA : " + std::string(call) + " : " + error);
  return result == kOutOfMemory ? kOutOfDeviceMemory : kDeviceFailed;
}

const CudaApi* GetCudaApi() {
  static const std::optional<CudaApi> kApi = OpenApi();
  return kApi.has_value() ? &*kApi : nullptr;
}

}  // namespace IL
