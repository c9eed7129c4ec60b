#include "gpu/CudaDriver.h"

#include <array>

namespace Quillon {

const wchar_t* cudaDriverLibraryName = L"nvcuda.dll";

CudaDriverInit cuInit = nullptr;

#define QUILLON_CUDA_REQUIRED(name) FARPROC name = nullptr;
#define QUILLON_CUDA_OPTIONAL(name) FARPROC name = nullptr;
#include "gpu/CudaDriverEntryPoints.inc"

namespace {

constexpr unsigned kMissing = 999;

/// What a FARPROC may be on its way to be a function of another type: compilers warn of casts
/// between function types, but for this one.
using AnyFunction = void (*)();

struct EntryPoint {
  const char* name;
  FARPROC* pointer;
  bool isRequired;
};

#define QUILLON_CUDA_REQUIRED(name) EntryPoint{#name, &(name), true},
#define QUILLON_CUDA_OPTIONAL(name) EntryPoint{#name, &(name), false},
constexpr auto kEntryPoints = std::to_array<EntryPoint>({
#include "gpu/CudaDriverEntryPoints.inc"
});

}  // namespace

unsigned InitCudaDriver(unsigned flags) {
  const HMODULE driver = LoadLibraryW(cudaDriverLibraryName);
  if (driver == nullptr) return kMissing;
  cuInit = reinterpret_cast<CudaDriverInit>(
      reinterpret_cast<AnyFunction>(GetProcAddress(driver, "cuInit")));
  if (cuInit == nullptr) return kMissing;
  if (const unsigned result = cuInit(flags); result != 0) return result;
  for (const EntryPoint& entry : kEntryPoints) {
    *entry.pointer = GetProcAddress(driver, entry.name);
    if (entry.isRequired && *entry.pointer == nullptr) return kMissing;
  }
  return 0;
}

}  // namespace Quillon
