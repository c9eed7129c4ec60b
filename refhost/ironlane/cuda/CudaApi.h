#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace IL {

// Types of NVIDIA's driver, as far as they pass through here. The driver is opened when the program
// runs; none of its headers is needed.

using CudaResult = int;
using CudaDeviceId = int;
using CudaContext = struct CudaContextOpaque*;
using CudaStream = struct CudaStreamOpaque*;
using CudaModule = struct CudaModuleOpaque*;
using CudaFunction = struct CudaFunctionOpaque*;
using CudaLinkState = struct CudaLinkStateOpaque*;

/// The driver's functions.
struct CudaApi {
// NOLINTNEXTLINE(bugprone-macro-parentheses): they would not be declarations then.
#define QUILLON_CUDA_FUNCTION(name, symbol, parameters) CudaResult(*name) parameters = nullptr;
#include "refhost/ironlane/cuda/CudaFunctions.inc"

  /// 0, or one of this library's codes, and a message to the trace that names the call and the
  /// driver's error.
  int Check(CudaResult result, std::string_view call) const;
};

/// The driver, initialised; null where there is none, or one that lacks a function. Opened once in
/// a process.
const CudaApi* GetCudaApi();

}  // namespace IL
