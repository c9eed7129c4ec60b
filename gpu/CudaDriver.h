#pragma once

#include "host/os/DynamicLibrary.h"

namespace Quillon {

// NVIDIA's CUDA driver interface, found when the program runs.
// Deliberate: nothing else of the engine uses it. Kernels go through the host's devices.

/// Name of the driver's library.
/// Deliberate: "nvcuda.dll", on every system.
extern const wchar_t* cudaDriverLibraryName;

using CudaDriverInit = unsigned (*)(unsigned flags);
extern CudaDriverInit cuInit;

// One pointer for each other entry point, named as it is; null until found, and where the driver
// lacks it. Never cleared.
#define QUILLON_CUDA_REQUIRED(name) extern FARPROC name;
#define QUILLON_CUDA_OPTIONAL(name) extern FARPROC name;
#include "gpu/CudaDriverEntryPoints.inc"

/// Opens the driver, initialises it with these flags, and finds its entry points. Not for several
/// threads at once.
/// Deliberate: every call does so anew.
///
/// 0, or what `cuInit` returned where that is not 0: nothing else is looked up then. 999 where
/// there is no driver, or it lacks `cuInit` or a required entry point: those after it stay as they
/// were.
unsigned InitCudaDriver(unsigned flags);

}  // namespace Quillon
