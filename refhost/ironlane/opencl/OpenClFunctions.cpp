// The functions of OpenCL in this library: each calls that of the system's loader, which is opened
// when the first is called. Without one there are no platforms, and so nothing else to call.

#include <optional>
#include <string>

#include "host/os/DynamicLibrary.h"
#include "refhost/ironlane/Trace.h"
#include "refhost/ironlane/opencl/OpenCl.h"

namespace {

struct OpenClApi {
// NOLINTBEGIN(bugprone-macro-parentheses): they would not be declarations then.
#define QUILLON_OPENCL_FUNCTION(result, name, parameters, arguments) \
  decltype(&::name) name = nullptr;
#include "refhost/ironlane/opencl/OpenClFunctions.inc"
  // NOLINTEND(bugprone-macro-parentheses)
};

template <class Function>
bool Find(HMODULE loader, const char* name, Function& function) {
  // Compilers warn of casts between function types, but for this one in between.
  using AnyFunction = void (*)();
  function =
      reinterpret_cast<Function>(reinterpret_cast<AnyFunction>(GetProcAddress(loader, name)));
  return function != nullptr;
}

std::optional<OpenClApi> OpenApi() {
  // Never closed: the drivers' threads may outlive us.
  const HMODULE loader = LoadLibraryW(L"OpenCL.dll");
  if (loader == nullptr) return std::nullopt;
  OpenClApi api;
#define QUILLON_OPENCL_FUNCTION(result, name, parameters, arguments) \
  if (!Find(loader, #name, api.name)) {                              \
    RefHost::TraceMessage("OpenCL : the loader lacks " #name);       \
    return std::nullopt;                                             \
  }
#include "refhost/ironlane/opencl/OpenClFunctions.inc"
  return api;
}

/// Null where there is no loader.
const OpenClApi* Api() {
  static const std::optional<OpenClApi> kApi = OpenApi();
  return kApi.has_value() ? &*kApi : nullptr;
}

/// What is returned then.
template <class Result>
Result NoPlatform() {
  return nullptr;
}
template <>
cl_int NoPlatform() {
  return CL_PLATFORM_NOT_FOUND_KHR;
}

}  // namespace

#define QUILLON_OPENCL_FUNCTION(result, name, parameters, arguments) \
  extern "C" result CL_API_CALL name parameters {                    \
    return Api() ? Api()->name arguments : NoPlatform<result>();     \
  }
#include "refhost/ironlane/opencl/OpenClFunctions.inc"
