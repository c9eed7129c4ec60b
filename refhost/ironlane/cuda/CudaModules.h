#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "host/IL/Device.h"
#include "refhost/ironlane/BinaryCache.h"
#include "refhost/ironlane/cuda/CudaApi.h"

namespace IL {

/// The modules and kernels of one context, which is current in every call. One thread at a time.
class CudaModules {
 public:
  /// `target` says what binaries depend on beside their source: device, capability, driver.
  CudaModules(const CudaApi& api, std::string target) : api_(api), target_(std::move(target)) {}

  /// Null, and a message to the trace, when there is no such kernel or its module does not build.
  CudaFunction Find(std::string_view module, std::string_view kernel);
  /// Whether a handle is one that `Find` gave.
  bool Has(KernelHandle kernel) const;
  void UnloadAll();

 private:
  CudaModule ModuleOf(std::string_view module);
  CudaModule Load(std::string_view ptx);
  /// PTX to a binary of the device, empty when it does not build.
  BinaryCache::Binary Link(std::string_view ptx) const;

  const CudaApi& api_;
  std::string target_;
  BinaryCache cache_;
  std::map<std::string, CudaModule, std::less<>> modules_;
  std::map<std::pair<std::string, std::string>, CudaFunction> functions_;
};

}  // namespace IL
