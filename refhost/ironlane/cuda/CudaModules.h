#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/ironlane/Device.h"
#include "refhost/ironlane/BinaryCache.h"
#include "refhost/ironlane/cuda/CudaContext.h"
#include "refhost/ironlane/cuda/PtxText.h"

namespace RefHost {

/// What binaries depend on beside their source.
struct CudaTarget {
  std::string device;
  MajorMinor capability;
  int driverVersion = 0;  ///< as the driver gives it, 12040 for 12.4; 0 where it does not

  MajorMinor Driver() const { return {driverVersion / 1000, driverVersion % 1000 / 10}; }
  /// Whether this is too old for a text of PTX; what is not may still fail to load.
  bool IsTooOldFor(std::string_view ptx) const;
};

struct CudaKernel {
  std::string name;
  CudaFunction function = nullptr;
  /// Sizes of its parameters; empty where the driver does not tell.
  std::vector<std::size_t> parameterBytes;
};

/// The modules and kernels of one context, which is current in every call. Any thread may call; who
/// looks for a kernel that is there waits for nobody who builds.
class CudaModules {
 public:
  CudaModules(CudaContext& context, CudaTarget target);

  /// Null, and a message to the trace, when there is no such kernel or its module does not build.
  const CudaKernel* Find(std::string_view module, std::string_view kernel);
  /// The kernel behind a handle that `Find` gave, or null.
  const CudaKernel* At(IL::KernelHandle handle) const;
  CudaResult UnloadAll();

 private:
  using Name = std::pair<std::string, std::string>;

  const CudaKernel* Known(const Name& name) const;
  CudaModule ModuleOf(const std::string& module);
  CudaModule LoadNewest(const std::string& module);
  CudaResult Load(std::string_view ptx, CudaModule& module, std::string& log);
  /// PTX to a binary of the device.
  CudaResult Link(std::string_view ptx, BinaryCache::Binary& binary, std::string& log) const;
  std::vector<std::size_t> ParametersOf(CudaFunction function) const;

  CudaContext& context_;
  const CudaApi& api_;
  CudaTarget target_;
  BinaryCache cache_;
  std::mutex buildMutex_;  ///< taken before the other
  mutable std::mutex mutex_;
  std::map<std::string, CudaModule, std::less<>> modules_;  ///< by the first mutex
  std::map<Name, CudaKernel> kernels_;                      ///< by the second
};

}  // namespace RefHost
