#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace RefHost {

// Types of NVIDIA's driver, as far as they pass through here. The driver is opened when the program
// runs; none of its headers is needed.

using CudaResult = int;
using CudaDeviceId = int;
using CudaContextHandle = struct CudaContextOpaque*;
using CudaStream = struct CudaStreamOpaque*;
using CudaEvent = struct CudaEventOpaque*;
using CudaModule = struct CudaModuleOpaque*;
using CudaFunction = struct CudaFunctionOpaque*;
using CudaLinkState = struct CudaLinkStateOpaque*;
using CudaMemoryPool = struct CudaMemoryPoolOpaque*;

// Results that are told apart.
inline constexpr CudaResult kCudaInvalidValue = 1;
inline constexpr CudaResult kCudaOutOfMemory = 2;

/// The driver's functions.
struct CudaApi {
// NOLINTNEXTLINE(bugprone-macro-parentheses): they would not be declarations then.
#define QUILLON_CUDA_FUNCTION(name, symbol, parameters) CudaResult(*name) parameters = nullptr;
/// Null where the driver lacks it.
#define QUILLON_CUDA_OPTIONAL_FUNCTION(name, symbol, parameters) \
  QUILLON_CUDA_FUNCTION(name, symbol, parameters)
#include "refhost/ironlane/cuda/CudaFunctions.inc"

  /// "CUDA_ERROR_OUT_OF_MEMORY", for example.
  std::string NameOf(CudaResult result) const;
  /// 0, or one of this library's codes, and a message to the trace that names the call and the
  /// driver's error.
  int Check(CudaResult result, const std::string& call) const;
};

/// The driver, initialised; null, and a message to the trace, where there is none, or one that
/// lacks a function or does not initialise: the next call tries again. Once there it stays.
const CudaApi* GetCudaApi();

}  // namespace RefHost
