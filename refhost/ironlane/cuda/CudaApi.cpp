#include "refhost/ironlane/cuda/CudaApi.h"

#include <optional>
#include <string>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include "refhost/ironlane/ResultCodes.h"
#include "refhost/ironlane/Trace.h"

namespace IL {

namespace {

/// The driver's library, never closed: its threads may outlive us.
void* OpenDriver() {
#ifdef _WIN32
  return reinterpret_cast<void*>(LoadLibraryW(L"nvcuda.dll"));
#else
  return dlopen("libcuda.so.1", RTLD_NOW | RTLD_LOCAL);
#endif
}

template <class Function>
bool Find(void* driver, const char* symbol, Function& function) {
#ifdef _WIN32
  function = reinterpret_cast<Function>(GetProcAddress(reinterpret_cast<HMODULE>(driver), symbol));
#else
  function = reinterpret_cast<Function>(dlsym(driver, symbol));
#endif
  return function != nullptr;
}

std::optional<CudaApi> OpenApi() {
  void* driver = OpenDriver();
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
