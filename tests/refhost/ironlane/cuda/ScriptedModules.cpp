// Linking, modules and launches.

#include <cstdio>
#include <cstring>
#include <sstream>
#include <string_view>

#include "host/ironlane/GPUFrameDescriptor.h"
#include "tests/refhost/ironlane/cuda/ScriptedState.h"

namespace scripted {

namespace {

constexpr std::string_view kBinaryStart =
    "\x7F"
    "CUBIN ";

/// Bytes of the parameter that a line of PTX declares: ".param .align 8 .b8 Kernel_param_0[32],".
std::size_t ParameterBytes(const std::string& line) {
  std::istringstream words(line);
  std::size_t bytes = 0;
  std::string name;
  for (std::string word; words >> word; name = word) {
    // The type is a letter and its bits.
    const bool isType = word.size() > 2 && word[0] == '.' && word[2] >= '0' && word[2] <= '9';
    if (isType) bytes = std::stoul(word.substr(2)) / 8;
  }
  const auto bracket = name.find('[');
  return bracket == std::string::npos ? bytes : bytes * std::stoul(name.substr(bracket + 1));
}

/// The sizes of a kernel's parameters, out of its PTX; none when there is no such kernel.
std::vector<std::size_t> ParametersOf(const std::string& ptx, const std::string& kernel) {
  std::vector<std::size_t> sizes;
  const auto entry = ptx.find(".entry " + kernel + "(");
  if (entry == std::string::npos) return sizes;
  std::istringstream lines(ptx.substr(entry, ptx.find(")\n", entry) - entry));
  for (std::string line; std::getline(lines, line);) {
    if (line.find(".param") != std::string::npos) sizes.push_back(ParameterBytes(line));
  }
  return sizes;
}

std::string WordAfter(const std::string& text, const std::string& word) {
  const auto at = text.find(word);
  std::istringstream words(at == std::string::npos ? "" : text.substr(at + word.size()));
  std::string found;
  words >> found;
  return found;
}

const Device& SetupOf(const Call& call) {
  return TheState().driver.devices[static_cast<std::size_t>(call.context->device)];
}

/// "8.4" as 84.
int Tenths(const std::string& version) {
  int major = 0;
  int minor = 0;
  std::sscanf(version.c_str(), "%d.%d", &major, &minor);
  return 10 * major + minor;
}

/// What a driver of this version says to PTX on this device: CUDA 12.4 knows PTX 8.4.
int CheckPtx(const Call& call, const std::string& ptx) {
  const int version = TheState().driver.version;
  if (Tenths(WordAfter(ptx, ".version")) > (version / 1000 - 4) * 10 + version % 1000 / 10) {
    return kUnsupportedPtxVersion;
  }
  const std::string target = WordAfter(ptx, ".target");
  if (!target.starts_with("sm_")) return kInvalidPtx;
  const Device& setup = SetupOf(call);
  return std::stoi(target.substr(3)) > 10 * setup.major + setup.minor ? kInvalidPtx : 0;
}

std::string BinaryFor(const Call& call, const std::string& ptx) {
  const Device& setup = SetupOf(call);
  return std::string(kBinaryStart) + std::to_string(10 * setup.major + setup.minor) + ' ' + ptx;
}

/// The frames that a launch has, told from its other parameters by their size.
bool AreFramesThere(const Context* context, const Launch& launch) {
  for (const auto& bytes : launch.parameters) {
    Quillon::GPUFrameDescriptor frame{};
    if (bytes.size() != sizeof(frame)) continue;
    std::memcpy(&frame, bytes.data(), sizeof(frame));
    if (frame.width == 0 || frame.height == 0) continue;
    const std::size_t pixelBytes = frame.formatFlag != 0 ? 16 : 8;
    const std::size_t extent =
        (std::size_t{frame.height - 1} * frame.rowPitchPixels + frame.width) * pixelBytes;
    if (There(context, frame.devicePointer, extent) == nullptr) return false;
  }
  return true;
}

void MarkLastFrame(const Launch& launch) {
  for (auto bytes = launch.parameters.rbegin(); bytes != launch.parameters.rend(); ++bytes) {
    if (bytes->size() != 32) continue;
    std::uint8_t* pixels = nullptr;
    std::memcpy(&pixels, bytes->data(), sizeof(pixels));
    if (pixels != nullptr) ++*pixels;
    return;
  }
}

/// What is wrong with a launch's sizes; null where nothing is.
const char* FaultOf(const std::vector<unsigned>& sizes, unsigned sharedBytes) {
  for (const unsigned size : sizes) {
    if (size == 0) return "a launch of nothing";
  }
  if (sizes[3] > 1024 || sizes[4] > 1024 || sizes[5] > 64 ||
      sizes[3] * sizes[4] * sizes[5] > 1024) {
    return "a launch of too large blocks";
  }
  if (sizes[0] > 0x7FFFFFFFU || sizes[1] > 65535 || sizes[2] > 65535) {
    return "a launch of too large a grid";
  }
  return sharedBytes > 49152 ? "a launch with too much shared memory" : nullptr;
}

}  // namespace

}  // namespace scripted

using namespace scripted;  // NOLINT(google-build-using-namespace): the driver's own functions

extern "C" {

int cuLinkCreate_v2(unsigned count, int* options, void** values, void** state) {
  const Call call = BeginInContext("cuLinkCreate");
  if (call.result != 0) return call.result;
  // What the linker says goes where the options point.
  if (count == 2 && options[0] == 5 && options[1] == 6 &&
      values[1] == reinterpret_cast<void*>(8192)) {
    std::snprintf(static_cast<char*>(values[0]), 8192, "what the linker says");
  }
  auto made = std::make_unique<Link>();
  made->context = call.context;
  *state = made.get();
  TheState().links.emplace(*state, std::move(made));
  ++TheState().driver.links;
  return 0;
}
int cuLinkAddData_v2(void* state, int type, void* data, std::size_t bytes, const char*, unsigned,
                     int*, void**) {
  const Call call = BeginInContext("cuLinkAddData");
  if (call.result != 0) return call.result;
  Link* link = At(TheState().links, state, call, "cuLinkAddData to a link");
  if (link == nullptr) return kInvalidHandle;
  const auto* text = static_cast<const char*>(data);
  if (type != 1 || text[bytes - 1] != '\0') return Refuse("cuLinkAddData of no PTX", kInvalidValue);
  link->ptx = text;
  return CheckPtx(call, link->ptx);
}
int cuLinkComplete(void* state, void** binary, std::size_t* bytes) {
  const Call call = BeginInContext("cuLinkComplete");
  if (call.result != 0) return call.result;
  Link* link = At(TheState().links, state, call, "cuLinkComplete of a link");
  if (link == nullptr) return kInvalidHandle;
  // The binary is the text behind a mark and what it is for.
  link->ptx = BinaryFor(call, link->ptx);
  *binary = link->ptx.data();
  *bytes = link->ptx.size() + 1;
  ++TheState().driver.linked;
  return 0;
}
int cuLinkDestroy(void* state) {
  const Call call = BeginInContext("cuLinkDestroy");
  if (call.context == nullptr || call.context->error != 0) return call.result;
  if (At(TheState().links, state, call, "cuLinkDestroy of a link") == nullptr) {
    return kInvalidHandle;
  }
  TheState().links.erase(state);
  --TheState().driver.links;
  return call.result;
}
int cuModuleLoadData(void** module, const void* image) {
  const Call call = BeginInContext("cuModuleLoadData");
  if (call.result != 0) return call.result;
  const std::string text(static_cast<const char*>(image));
  const std::string start = BinaryFor(call, "");
  if (!text.starts_with(start)) return kNoBinaryForGPU;
  auto made = std::make_unique<Module>();
  made->context = call.context;
  made->ptx = text.substr(start.size());
  TheState().driver.loaded.push_back(WordAfter(text, ".version"));
  *module = made.get();
  TheState().modules.emplace(*module, std::move(made));
  ++TheState().driver.modules;
  return 0;
}
int cuModuleUnload(void* module) {
  const Call call = BeginInContext("cuModuleUnload");
  if (call.context == nullptr || call.context->error != 0) return call.result;
  if (At(TheState().modules, module, call, "cuModuleUnload of a module") == nullptr) {
    return kInvalidHandle;
  }
  TheState().modules.erase(module);
  --TheState().driver.modules;
  return call.result;
}
int cuModuleGetFunction(void** function, void* module, const char* name) {
  const Call call = BeginInContext("cuModuleGetFunction");
  if (call.result != 0) return call.result;
  const Module* known = At(TheState().modules, module, call, "cuModuleGetFunction with a module");
  if (known == nullptr) return kInvalidHandle;
  auto made = std::make_unique<Function>();
  made->context = call.context;
  made->name = name;
  made->parameterBytes = ParametersOf(known->ptx, name);
  if (made->parameterBytes.empty()) return kNotFound;
  *function = made.get();
  TheState().functions.emplace(*function, std::move(made));
  return 0;
}
#ifndef QUILLON_OLD_CUDA
int cuFuncGetParamInfo(void* function, std::size_t index, std::size_t* offset, std::size_t* bytes) {
  const Call call = BeginInContext("cuFuncGetParamInfo");
  if (call.result != 0) return call.result;
  const Function* known =
      At(TheState().functions, function, call, "cuFuncGetParamInfo with a function");
  if (known == nullptr) return kInvalidHandle;
  if (index >= known->parameterBytes.size()) return kInvalidValue;
  *offset = 0;
  *bytes = known->parameterBytes[index];
  return 0;
}
#endif
int cuLaunchKernel(void* function, unsigned gridX, unsigned gridY, unsigned gridZ, unsigned blockX,
                   unsigned blockY, unsigned blockZ, unsigned sharedBytes, void* handle,
                   void** parameters, void** extra) {
  const Call call = BeginInContext("cuLaunchKernel");
  if (call.result != 0) return call.result;
  const Function* kernel =
      At(TheState().functions, function, call, "cuLaunchKernel with a function");
  Stream* stream = StreamAt(handle, call, "cuLaunchKernel");
  if (kernel == nullptr || stream == nullptr) return kInvalidHandle;
  if ((parameters == nullptr) == (extra == nullptr)) {
    return Refuse("cuLaunchKernel with both kernelParams and extra, or neither", kInvalidValue);
  }
  if (extra != nullptr) return Refuse("cuLaunchKernel with extra", kNotSupported);
  Launch launch{.kernel = kernel->name,
                .device = call.context->device,
                .sizes = {gridX, gridY, gridZ, blockX, blockY, blockZ},
                .parameters = {}};
  if (const char* fault = FaultOf(launch.sizes, sharedBytes); fault != nullptr) {
    return Refuse(fault, kInvalidValue);
  }
  // Parameters are read at the call, whatever they point to when the work is done. Behind the last
  // there is a null: only so can it be seen here that there are as many as the kernel has.
  for (std::size_t i = 0; i < kernel->parameterBytes.size(); ++i) {
    if (parameters[i] == nullptr) return Refuse("a launch with too few arguments", kInvalidValue);
    const auto* bytes = static_cast<const std::uint8_t*>(parameters[i]);
    launch.parameters.emplace_back(bytes, bytes + kernel->parameterBytes[i]);
  }
  if (parameters[kernel->parameterBytes.size()] != nullptr) {
    return Refuse("a launch with too many arguments", kInvalidValue);
  }
  Give(*stream, "cuLaunchKernel", [context = call.context, launch] {
    if (!AreFramesThere(context, launch)) return kIllegalAddress;
    MarkLastFrame(launch);
    TheState().driver.launches.push_back(launch);
    return 0;
  });
  return 0;
}

}  // extern "C"
