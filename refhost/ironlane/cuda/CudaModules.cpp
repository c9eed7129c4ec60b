#include "refhost/ironlane/cuda/CudaModules.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>

#include "kernels/KernelModules.h"
#include "refhost/ironlane/Trace.h"

namespace RefHost {

namespace {

// Of the driver's enumerations.
constexpr int kErrorLogBuffer = 5;
constexpr int kErrorLogBufferBytes = 6;
constexpr int kInputPtx = 1;

/// Whether another text of PTX may do where one gave this.
bool IsOfThisTextAlone(CudaResult result) {
  constexpr CudaResult kNoBinaryForGPU = 209;
  constexpr CudaResult kInvalidPtx = 218;
  constexpr CudaResult kUnsupportedPtxVersion = 222;
  return result == kNoBinaryForGPU || result == kInvalidPtx || result == kUnsupportedPtxVersion;
}

}  // namespace

bool CudaTarget::IsTooOldFor(std::string_view ptx) const {
  const auto needs = NeedsOf(ptx);
  if (!needs.has_value()) return false;
  return capability < needs->capability || (driverVersion != 0 && Driver() < needs->driver);
}

CudaModules::CudaModules(CudaContext& context, CudaTarget target)
    : context_(context),
      api_(context.Api()),
      target_(std::move(target)),
      // Without a version nothing tells whose binary it is.
      cache_(target_.driverVersion != 0 ? BinaryCache() : BinaryCache(std::filesystem::path())) {}

const CudaKernel* CudaModules::Find(std::string_view module, std::string_view kernel) {
  const Name name(module, kernel);
  if (const CudaKernel* known = Known(name)) return known;
  const std::lock_guard building(buildMutex_);
  if (const CudaKernel* known = Known(name)) return known;
  CudaModule loaded = ModuleOf(name.first);
  if (loaded == nullptr) return nullptr;
  CudaFunction function = nullptr;
  const CudaResult result = api_.ModuleGetFunction(&function, loaded, name.second.c_str());
  if (context_.Check(result, "cuModuleGetFunction of " + name.second) < 0) return nullptr;
  CudaKernel made{name.second, function, ParametersOf(function)};
  const std::lock_guard lock(mutex_);
  return &kernels_.emplace(name, std::move(made)).first->second;
}

const CudaKernel* CudaModules::At(IL::KernelHandle handle) const {
  const std::lock_guard lock(mutex_);
  const auto found = std::find_if(kernels_.begin(), kernels_.end(),
                                  [&](const auto& entry) { return &entry.second == handle; });
  return found == kernels_.end() ? nullptr : &found->second;
}

CudaResult CudaModules::UnloadAll() {
  CudaResult first = 0;
  for (const auto& [name, module] : modules_) {
    const CudaResult result = api_.ModuleUnload(module);
    if (first == 0) first = result;
  }
  modules_.clear();
  kernels_.clear();
  return first;
}

const CudaKernel* CudaModules::Known(const Name& name) const {
  const std::lock_guard lock(mutex_);
  const auto known = kernels_.find(name);
  return known == kernels_.end() ? nullptr : &known->second;
}

CudaModule CudaModules::ModuleOf(const std::string& module) {
  const auto known = modules_.find(module);
  if (known != modules_.end()) return known->second;
  CudaModule made = LoadNewest(module);
  if (made != nullptr) modules_.emplace(module, made);
  return made;
}

CudaModule CudaModules::LoadNewest(const std::string& module) {
  const kernels::KernelModule* source = kernels::FindKernelModule(module);
  if (source == nullptr || source->ptx.empty()) {
    TraceMessage("CUDA : there is no module " + module);
    return nullptr;
  }
  // What an older text makes up for is nobody's concern.
  std::vector<std::pair<CudaResult, std::string>> failures;
  for (const std::string_view ptx : source->ptx) {
    if (target_.IsTooOldFor(ptx)) continue;
    CudaModule made = nullptr;
    std::string log;
    const CudaResult result = Load(ptx, made, log);
    if (result == 0) return made;
    failures.emplace_back(result, log);
    if (!IsOfThisTextAlone(result)) break;
  }
  for (const auto& [result, log] : failures) {
    context_.Check(result, "building kernels");
    if (!log.empty()) TraceMessage("CUDA : the kernels do not build : " + log);
  }
  if (failures.empty()) TraceMessage("CUDA : " + target_.device + " is too old for " + module);
  return nullptr;
}

CudaResult CudaModules::Load(std::string_view ptx, CudaModule& module, std::string& log) {
  const std::string key = "CUDA\n" + target_.device + '\n' +
                          std::to_string(target_.capability.major) + '.' +
                          std::to_string(target_.capability.minor) + '\n' +
                          std::to_string(target_.driverVersion) + '\n' + std::string(ptx);
  if (const auto kept = cache_.Find(key)) {
    const CudaResult result = api_.ModuleLoadData(&module, kept->data());
    // One that is not at fault is kept.
    if (result == 0 || result == kCudaOutOfMemory || EndsContext(result)) return result;
    cache_.Forget(key);
  }
  BinaryCache::Binary binary;
  if (const CudaResult result = Link(ptx, binary, log); result != 0) return result;
  const CudaResult result = api_.ModuleLoadData(&module, binary.data());
  if (result == 0) cache_.Store(key, binary);
  return result;
}

CudaResult CudaModules::Link(std::string_view ptx, BinaryCache::Binary& binary,
                             std::string& log) const {
  std::array<char, 8192> said{};
  std::array<int, 2> options = {kErrorLogBuffer, kErrorLogBufferBytes};
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the driver takes the size in a pointer's place.
  std::array<void*, 2> values = {said.data(), reinterpret_cast<void*>(said.size())};
  CudaLinkState state = nullptr;
  CudaResult result = api_.LinkCreate(2, options.data(), values.data(), &state);
  if (result != 0) return result;
  std::string text(ptx);  // which the driver wants with its terminating null
  void* linked = nullptr;
  std::size_t bytes = 0;
  result = api_.LinkAddData(state, kInputPtx, text.data(), text.size() + 1, "kernels", 0, nullptr,
                            nullptr);
  if (result == 0) result = api_.LinkComplete(state, &linked, &bytes);
  if (result == 0) {
    binary.resize(bytes);
    std::memcpy(binary.data(), linked, bytes);
  } else {
    log = said.data();
  }
  context_.Check(api_.LinkDestroy(state), "cuLinkDestroy");
  return result;
}

std::vector<std::size_t> CudaModules::ParametersOf(CudaFunction function) const {
  std::vector<std::size_t> sizes;
  if (api_.FuncGetParamInfo == nullptr) return sizes;
  std::size_t offset = 0;
  std::size_t bytes = 0;
  // Ends with an error behind the last.
  while (api_.FuncGetParamInfo(function, sizes.size(), &offset, &bytes) == 0) {
    sizes.push_back(bytes);
  }
  return sizes;
}

}  // namespace RefHost
