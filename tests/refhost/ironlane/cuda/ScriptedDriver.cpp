// A library that stands in for NVIDIA's driver, as far as it is called.

#include "tests/refhost/ironlane/cuda/ScriptedDriver.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <sstream>
#include <string_view>

namespace {

struct Module {
  std::string ptx;
};
struct Function {
  std::string name;
  std::vector<std::size_t> parameterBytes;
};
struct Link {
  std::string ptx;
};

std::mutex mutex;
scripted::Driver driver;
std::vector<std::unique_ptr<Function>> functions;

/// 0, or the error with which this call is to fail.
int Enter(const std::string& function) {
  const std::lock_guard lock(mutex);
  const int call = ++driver.calls[function];
  static bool isLost = false;
  if (driver.failing.empty()) isLost = false;
  if (isLost) return driver.error;
  if (function != driver.failing || call < driver.failingFrom) return 0;
  isLost = driver.isLostThen;
  return isLost || call == driver.failingFrom ? driver.error : 0;
}

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

template <class Opaque>
Opaque* NewHandle() {
  return reinterpret_cast<Opaque*>(std::make_unique<char>().release());
}
void DeleteHandle(void* handle) { const std::unique_ptr<char> owner(static_cast<char*>(handle)); }

/// Memory of the device, which is the process's own.
void* At(std::uint64_t pointer) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the driver's interface has numbers for it.
  return reinterpret_cast<void*>(pointer);
}

constexpr std::string_view kBinaryStart =
    "\x7F"
    "CUBIN";

}  // namespace

extern "C" {

scripted::Driver* TheScriptedDriver() { return &driver; }

int cuInit(unsigned) { return Enter("cuInit"); }
int cuDriverGetVersion(int* version) {
  *version = 12040;
  return Enter("cuDriverGetVersion");
}
int cuGetErrorName(int error, const char** name) {
  *name = error == 2 ? "CUDA_ERROR_OUT_OF_MEMORY" : "CUDA_ERROR_LAUNCH_FAILED";
  return 0;
}
int cuDeviceGetCount(int* count) {
  *count = driver.devices;
  return Enter("cuDeviceGetCount");
}
int cuDeviceGet(int* device, int ordinal) {
  *device = ordinal;
  return Enter("cuDeviceGet");
}
int cuDeviceGetName(char* name, int size, int device) {
  std::snprintf(name, static_cast<std::size_t>(size), "Scripted %d", device);
  return Enter("cuDeviceGetName");
}
int cuDeviceTotalMem_v2(std::size_t* bytes, int) {
  *bytes = std::size_t{8} << 30U;
  return Enter("cuDeviceTotalMem");
}
int cuDeviceGetAttribute(int* value, int, int) {
  *value = 9;
  return Enter("cuDeviceGetAttribute");
}
int cuDevicePrimaryCtxRetain(void** context, int device) {
  const int result = Enter("cuDevicePrimaryCtxRetain");
  if (result != 0) return result;
  ++driver.contexts;
  *context = &driver + 1 + device;
  return 0;
}
int cuDevicePrimaryCtxRelease_v2(int) {
  --driver.contexts;
  return Enter("cuDevicePrimaryCtxRelease");
}
int cuCtxPushCurrent_v2(void*) {
  const int result = Enter("cuCtxPushCurrent");
  const std::lock_guard lock(mutex);
  if (result == 0) ++driver.current;
  return result;
}
int cuCtxPopCurrent_v2(void** context) {
  const std::lock_guard lock(mutex);
  --driver.current;
  *context = nullptr;
  return 0;
}
int cuStreamCreate(void** stream, unsigned) {
  const int result = Enter("cuStreamCreate");
  if (result != 0) return result;
  ++driver.streams;
  *stream = NewHandle<void>();
  return 0;
}
int cuStreamDestroy_v2(void* stream) {
  --driver.streams;
  DeleteHandle(stream);
  return Enter("cuStreamDestroy");
}
int cuStreamSynchronize(void*) { return Enter("cuStreamSynchronize"); }
int cuMemAlloc_v2(std::uint64_t* pointer, std::size_t bytes) {
  const int result = Enter("cuMemAlloc");
  if (result != 0) return result;
  if (bytes > std::size_t{8} << 30U) return 2;
  std::vector<std::uint8_t> memory(bytes);
  *pointer = reinterpret_cast<std::uint64_t>(memory.data());
  const std::lock_guard lock(mutex);
  driver.memory.emplace(*pointer, std::move(memory));
  return 0;
}
int cuMemFree_v2(std::uint64_t pointer) {
  {
    const std::lock_guard lock(mutex);
    driver.memory.erase(pointer);
  }
  return Enter("cuMemFree");
}
int cuMemcpyHtoDAsync_v2(std::uint64_t to, const void* from, std::size_t bytes, void*) {
  const int result = Enter("cuMemcpyHtoDAsync");
  if (result == 0) std::memcpy(At(to), from, bytes);
  return result;
}
int cuMemcpyDtoHAsync_v2(void* to, std::uint64_t from, std::size_t bytes, void*) {
  const int result = Enter("cuMemcpyDtoHAsync");
  if (result == 0) std::memcpy(to, At(from), bytes);
  return result;
}
int cuMemcpyDtoDAsync_v2(std::uint64_t to, std::uint64_t from, std::size_t bytes, void*) {
  const int result = Enter("cuMemcpyDtoDAsync");
  if (result == 0) std::memcpy(At(to), At(from), bytes);
  return result;
}
int cuLinkCreate_v2(unsigned count, int* options, void** values, void** state) {
  const int result = Enter("cuLinkCreate");
  if (result != 0) return result;
  // What the linker says goes where the options point.
  if (count == 2 && options[0] == 5 && options[1] == 6 &&
      values[1] == reinterpret_cast<void*>(8192)) {
    std::snprintf(static_cast<char*>(values[0]), 8192, "what the linker says");
  }
  ++driver.links;
  *state = std::make_unique<Link>().release();
  return 0;
}
int cuLinkAddData_v2(void* state, int type, void* data, std::size_t bytes, const char*, unsigned,
                     int*, void**) {
  const auto* text = static_cast<const char*>(data);
  if (type != 1 || text[bytes - 1] != '\0') return 1;
  // The binary is the text behind a mark.
  static_cast<Link*>(state)->ptx = std::string(kBinaryStart) + text;
  return Enter("cuLinkAddData");
}
int cuLinkComplete(void* state, void** binary, std::size_t* bytes) {
  auto& text = static_cast<Link*>(state)->ptx;
  *binary = text.data();
  *bytes = text.size() + 1;
  ++driver.linked;
  return Enter("cuLinkComplete");
}
int cuLinkDestroy(void* state) {
  --driver.links;
  const std::unique_ptr<Link> owner(static_cast<Link*>(state));
  return 0;
}
int cuModuleLoadData(void** module, const void* image) {
  const int result = Enter("cuModuleLoadData");
  if (result != 0) return result;
  const std::string text(static_cast<const char*>(image));
  if (!text.starts_with(kBinaryStart)) return 200;
  ++driver.modules;
  auto made = std::make_unique<Module>();
  made->ptx = text;
  *module = made.release();
  return 0;
}
int cuModuleUnload(void* module) {
  --driver.modules;
  const std::unique_ptr<Module> owner(static_cast<Module*>(module));
  return Enter("cuModuleUnload");
}
int cuModuleGetFunction(void** function, void* module, const char* name) {
  const int result = Enter("cuModuleGetFunction");
  if (result != 0) return result;
  auto made = std::make_unique<Function>();
  made->name = name;
  made->parameterBytes = ParametersOf(static_cast<Module*>(module)->ptx, name);
  if (made->parameterBytes.empty()) return 500;
  *function = made.get();
  const std::lock_guard lock(mutex);
  functions.push_back(std::move(made));
  return 0;
}
int cuLaunchKernel(void* function, unsigned gridX, unsigned gridY, unsigned gridZ, unsigned blockX,
                   unsigned blockY, unsigned blockZ, unsigned, void*, void** parameters, void**) {
  const int result = Enter("cuLaunchKernel");
  if (result != 0) return result;
  const auto& kernel = *static_cast<Function*>(function);
  scripted::Launch launch{kernel.name, {gridX, gridY, gridZ, blockX, blockY, blockZ}, {}};
  for (std::size_t i = 0; i < kernel.parameterBytes.size(); ++i) {
    const auto* bytes = static_cast<const std::uint8_t*>(parameters[i]);
    launch.parameters.emplace_back(bytes, bytes + kernel.parameterBytes[i]);
  }
  const std::lock_guard lock(mutex);
  driver.launches.push_back(std::move(launch));
  return 0;
}

}  // extern "C"
