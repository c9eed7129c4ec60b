#include "refhost/ironlane/cuda/CudaModules.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "kernels/KernelModules.h"
#include "refhost/ironlane/Trace.h"

namespace IL {

namespace {

// Of the driver's enumerations.
constexpr int kErrorLogBuffer = 5;
constexpr int kErrorLogBufferBytes = 6;
constexpr int kInputPtx = 1;

}  // namespace

CudaFunction CudaModules::Find(std::string_view module, std::string_view kernel) {
  const std::pair<std::string, std::string> key(module, kernel);
  const auto known = functions_.find(key);
  if (known != functions_.end()) return known->second;
  CudaModule loaded = ModuleOf(module);
  if (loaded == nullptr) return nullptr;
  CudaFunction function = nullptr;
  const CudaResult result = api_.ModuleGetFunction(&function, loaded, key.second.c_str());
  if (api_.Check(result, "cuModuleGetFunction of " + key.second) < 0) return nullptr;
  functions_.emplace(key, function);
  return function;
}

bool CudaModules::Has(KernelHandle kernel) const {
  return std::any_of(functions_.begin(), functions_.end(),
                     [&](const auto& entry) { return entry.second == kernel; });
}

void CudaModules::UnloadAll() {
  for (const auto& [name, module] : modules_) api_.ModuleUnload(module);
  modules_.clear();
  functions_.clear();
}

CudaModule CudaModules::ModuleOf(std::string_view module) {
  const auto loaded = modules_.find(module);
  if (loaded != modules_.end()) return loaded->second;
  const kernels::KernelModule* source = kernels::FindKernelModule(module);
  if (source == nullptr || source->ptx.empty()) {
    TraceMessage("CUDA : there is no module " + std::string(module));
    return nullptr;
  }
  CudaModule made = Load(source->ptx);
  if (made != nullptr) modules_.emplace(module, made);
  return made;
}

CudaModule CudaModules::Load(std::string_view ptx) {
  const std::string key = "CUDA\n" + target_ + '\n' + std::string(ptx);
  CudaModule module = nullptr;
  if (const auto kept = cache_.Find(key)) {
    if (api_.ModuleLoadData(&module, kept->data()) == 0) return module;
    cache_.Forget(key);
  }
  const BinaryCache::Binary binary = Link(ptx);
  if (binary.empty()) return nullptr;
  if (api_.Check(api_.ModuleLoadData(&module, binary.data()), "cuModuleLoadData") < 0) {
    return nullptr;
  }
  cache_.Store(key, binary);
  return module;
}

BinaryCache::Binary CudaModules::Link(std::string_view ptx) const {
  std::array<char, 8192> log{};
  std::array<int, 2> options = {kErrorLogBuffer, kErrorLogBufferBytes};
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the driver takes the size in a pointer's place.
  std::array<void*, 2> values = {log.data(), reinterpret_cast<void*>(log.size())};
  CudaLinkState state = nullptr;
  if (api_.Check(api_.LinkCreate(2, options.data(), values.data(), &state), "cuLinkCreate") < 0) {
    return {};
  }
  std::string text(ptx);  // which the driver wants with its terminating null
  void* linked = nullptr;
  std::size_t bytes = 0;
  CudaResult result = api_.LinkAddData(state, kInputPtx, text.data(), text.size() + 1, "kernels", 0,
                                       nullptr, nullptr);
  if (result == 0) result = api_.LinkComplete(state, &linked, &bytes);
  BinaryCache::Binary binary;
  if (api_.Check(result, "building kernels") < 0) {
    TraceMessage("CUDA : the kernels do not build : " + std::string(log.data()));
  } else {
    binary.resize(bytes);
    std::memcpy(binary.data(), linked, bytes);
  }
  api_.LinkDestroy(state);
  return binary;
}

}  // namespace IL
