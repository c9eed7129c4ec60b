#include "tests/refhost/ironlane/cuda/ScriptedState.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

namespace scripted {

namespace {

/// Contexts that are current on this thread, the last one on top.
std::vector<Context*>& Stack() {
  thread_local std::vector<Context*> stack;
  return stack;
}

/// The error with which the script ends this call, or 0.
int ScriptedFailure(const std::string& function) {
  Driver& driver = TheState().driver;
  const int call = ++driver.calls[function];
  if (function != driver.failing || call < driver.failingFrom) return 0;
  return driver.failsAlways || call == driver.failingFrom ? driver.error : 0;
}

/// The address of a byte of memory that holds the range, or null.
Memory* Holding(const Context* context, std::uint64_t pointer, std::size_t bytes) {
  auto& memory = TheState().memory;
  const auto above = memory.upper_bound(pointer);
  if (above == memory.begin()) return nullptr;
  auto& [base, found] = *std::prev(above);
  const bool holds = found.context == context && pointer - base <= found.bytes.size() &&
                     bytes <= found.bytes.size() - (pointer - base);
  return holds ? &found : nullptr;
}

}  // namespace

State& TheState() {
  static State state;
  return state;
}

Driver FreshDriver() {
  Driver driver;
#ifdef QUILLON_OLD_CUDA
  driver.version = 12000;
#endif
  return driver;
}

bool IsSticky(int error) {
  return error == 4 || error == 214 || error == 220 || error == 226 || error == 700 ||
         error == 702 || error == 709 || error == 710 || (error >= 714 && error <= 719);
}

Call Begin(const std::string& function) {
  State& state = TheState();
  if (state.driver.onCall) state.driver.onCall(function);
  Call call{std::unique_lock(state.mutex), 0, nullptr};
  if (!state.isInitialized && function != "cuInit") {
    call.result = Refuse(function + " before cuInit", kNotInitialized);
  } else {
    call.result = ScriptedFailure(function);
  }
  return call;
}

Call BeginInContext(const std::string& function) {
  Call call = Begin(function);
  if (Stack().empty()) {
    call.result = Refuse(function + " without a current context", kInvalidContext);
    return call;
  }
  call.context = Stack().back();
  if (call.context->retains == 0) {
    call.result = Refuse(function + " in a context that was released", 709);
  }
  if (call.context->error != 0) call.result = call.context->error;
  if (IsSticky(call.result)) call.context->error = call.result;
  return call;
}

int Refuse(const std::string& what, int error) {
  TheState().driver.refusals.push_back(what);
  return error;
}

Context* ContextOf(int device) {
  State& state = TheState();
  const auto count = state.driver.devices.size();
  if (device < 0 || static_cast<std::size_t>(device) >= count) return nullptr;
  while (state.contexts.size() < count) {
    state.contexts.push_back(std::make_unique<Context>());
    state.contexts.back()->device = static_cast<int>(state.contexts.size()) - 1;
  }
  return state.contexts[static_cast<std::size_t>(device)].get();
}

void Destroy(Context* context) {
  State& state = TheState();
  Drop(state.streams, context);
  Drop(state.events, context);
  Drop(state.modules, context);
  Drop(state.functions, context);
  Drop(state.links, context);
  for (auto entry = state.memory.begin(); entry != state.memory.end();) {
    const bool isOurs = entry->second.context == context;
    if (isOurs) state.driver.memory.erase(entry->first);
    entry = isOurs ? state.memory.erase(entry) : std::next(entry);
  }
  Driver& driver = state.driver;
  driver.streams = static_cast<int>(state.streams.size());
  driver.events = static_cast<int>(state.events.size());
  driver.modules = static_cast<int>(state.modules.size());
  driver.links = static_cast<int>(state.links.size());
  std::erase_if(state.pinned, [&](const auto& entry) { return entry.second.context == context; });
  driver.pinned = static_cast<int>(state.pinned.size());
  context->error = 0;
  context->releaseThreshold = 0;
}

Stream* StreamAt(void* handle, const Call& call, const std::string& function) {
  return At(TheState().streams, handle, call, function + " with a stream");
}

void Give(Stream& stream, const std::string& function, std::function<int()> work) {
  Driver& driver = TheState().driver;
  if (driver.failingLater == function) {
    driver.failingLater.clear();
    work = [error = driver.error] { return error; };
  }
  stream.pending.push_back(std::move(work));
  ++stream.given;
}

void RunUntil(Stream& stream, std::uint64_t ticket) {
  while (stream.done < ticket) {
    const std::function<int()> work = std::move(stream.pending.front());
    stream.pending.pop_front();
    ++stream.done;
    if (stream.context->error != 0) continue;
    const int result = work();
    if (result == 0) continue;
    stream.failure = result;
    if (IsSticky(result)) stream.context->error = result;
  }
}

int Wait(Stream& stream, std::uint64_t ticket) {
  ++TheState().driver.waits;
  RunUntil(stream, ticket);
  const int failure = std::exchange(stream.failure, 0);
  if (stream.context->error != 0) return stream.context->error;
  TrimPool(stream.context);
  return failure;
}

Memory* Given(const Context* context, std::uint64_t pointer, std::size_t bytes) {
  Memory* found = Holding(context, pointer, bytes);
  return found != nullptr && found->isGiven ? found : nullptr;
}

Memory* There(const Context* context, std::uint64_t pointer, std::size_t bytes) {
  Memory* found = Holding(context, pointer, bytes);
  return found != nullptr && found->isThere ? found : nullptr;
}

void TrimPool(const Context* context) {
  auto& memory = TheState().memory;
  std::size_t idle = 0;
  for (auto entry = memory.begin(); entry != memory.end();) {
    const Memory& block = entry->second;
    const bool isIdle =
        block.context == context && block.isPooled && !block.isGiven && !block.isThere;
    if (isIdle) idle += block.bytes.size();
    entry = isIdle && idle > context->releaseThreshold ? memory.erase(entry) : std::next(entry);
  }
}

namespace {

/// What a call that ends here gives: its scripted failure, or the misuse.
int PushContext(void* handle) {
  const Call call = Begin("cuCtxPushCurrent");
  if (call.result != 0) return call.result;
  State& state = TheState();
  const auto known = std::find_if(state.contexts.begin(), state.contexts.end(),
                                  [&](const auto& context) { return context.get() == handle; });
  if (known == state.contexts.end() || (*known)->retains == 0) {
    return Refuse("cuCtxPushCurrent of a context that is null, foreign or released",
                  kInvalidContext);
  }
  Stack().push_back(known->get());
  ++state.driver.current;
  return 0;
}

}  // namespace

}  // namespace scripted

using namespace scripted;  // NOLINT(google-build-using-namespace): the driver's own functions

extern "C" {

scripted::Driver* TheScriptedDriver() { return &TheState().driver; }

void ResetScriptedDriver() {
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  for (const auto& context : state.contexts) Destroy(context.get());
  state.contexts.clear();
  state.pinned.clear();
  state.driver = FreshDriver();
}

int cuInit(unsigned flags) {
  const Call call = Begin("cuInit");
  if (call.result != 0) return call.result;
  if (flags != 0) return Refuse("cuInit with flags", kInvalidValue);
  TheState().isInitialized = true;
  return 0;
}
int cuDriverGetVersion(int* version) {
  const Call call = Begin("cuDriverGetVersion");
  if (call.result == 0) *version = TheState().driver.version;
  return call.result;
}
int cuGetErrorName(int error, const char** name) {
  static const std::map<int, const char*> kNames = {
      {1, "CUDA_ERROR_INVALID_VALUE"},     {2, "CUDA_ERROR_OUT_OF_MEMORY"},
      {100, "CUDA_ERROR_NO_DEVICE"},       {101, "CUDA_ERROR_INVALID_DEVICE"},
      {201, "CUDA_ERROR_INVALID_CONTEXT"}, {209, "CUDA_ERROR_NO_BINARY_FOR_GPU"},
      {218, "CUDA_ERROR_INVALID_PTX"},     {222, "CUDA_ERROR_UNSUPPORTED_PTX_VERSION"},
      {400, "CUDA_ERROR_INVALID_HANDLE"},  {500, "CUDA_ERROR_NOT_FOUND"},
      {700, "CUDA_ERROR_ILLEGAL_ADDRESS"}, {719, "CUDA_ERROR_LAUNCH_FAILED"},
      {801, "CUDA_ERROR_NOT_SUPPORTED"}};
  const auto found = kNames.find(error);
  *name = found == kNames.end() ? nullptr : found->second;
  return found == kNames.end() ? kInvalidValue : 0;
}
int cuDeviceGetCount(int* count) {
  const Call call = Begin("cuDeviceGetCount");
  if (call.result == 0) *count = static_cast<int>(TheState().driver.devices.size());
  return call.result;
}
// A device's number is not its ordinal.
int cuDeviceGet(int* device, int ordinal) {
  const Call call = Begin("cuDeviceGet");
  if (call.result != 0) return call.result;
  if (ContextOf(ordinal) == nullptr) return Refuse("cuDeviceGet of no device", kInvalidDevice);
  *device = ordinal + 1000;
  return 0;
}
int cuDeviceGetName(char* name, int size, int device) {
  const Call call = Begin("cuDeviceGetName");
  if (call.result != 0) return call.result;
  const Context* context = ContextOf(device - 1000);
  if (context == nullptr) return Refuse("cuDeviceGetName of no device", kInvalidDevice);
  const auto index = static_cast<std::size_t>(context->device);
  std::snprintf(name, static_cast<std::size_t>(size), "%s",
                TheState().driver.devices[index].name.c_str());
  return 0;
}
int cuDeviceTotalMem_v2(std::size_t* bytes, int device) {
  const Call call = Begin("cuDeviceTotalMem");
  if (call.result != 0) return call.result;
  const Context* context = ContextOf(device - 1000);
  if (context == nullptr) return Refuse("cuDeviceTotalMem of no device", kInvalidDevice);
  *bytes = TheState().driver.devices[static_cast<std::size_t>(context->device)].memoryBytes;
  return 0;
}
int cuDeviceGetAttribute(int* value, int attribute, int device) {
  const Call call = Begin("cuDeviceGetAttribute");
  if (call.result != 0) return call.result;
  const Context* context = ContextOf(device - 1000);
  if (context == nullptr) return Refuse("cuDeviceGetAttribute of no device", kInvalidDevice);
  const Device& setup = TheState().driver.devices[static_cast<std::size_t>(context->device)];
  const std::map<int, int> attributes = {
      {75, setup.major}, {76, setup.minor}, {115, setup.hasPools ? 1 : 0}};
  const auto found = attributes.find(attribute);
  if (found == attributes.end()) {
    return Refuse("cuDeviceGetAttribute of attribute " + std::to_string(attribute), kInvalidValue);
  }
  *value = found->second;
  return 0;
}
int cuDevicePrimaryCtxRetain(void** context, int device) {
  const Call call = Begin("cuDevicePrimaryCtxRetain");
  if (call.result != 0) return call.result;
  Context* primary = ContextOf(device - 1000);
  if (primary == nullptr) return Refuse("cuDevicePrimaryCtxRetain of no device", kInvalidDevice);
  ++primary->retains;
  ++TheState().driver.contexts;
  *context = primary;
  return 0;
}
int cuDevicePrimaryCtxRelease_v2(int device) {
  const Call call = Begin("cuDevicePrimaryCtxRelease");
  Context* primary = ContextOf(device - 1000);
  if (primary == nullptr || primary->retains == 0) {
    return Refuse("cuDevicePrimaryCtxRelease of what is not retained", kInvalidContext);
  }
  --TheState().driver.contexts;
  if (--primary->retains == 0) Destroy(primary);
  return call.result;
}
int cuDevicePrimaryCtxReset_v2(int device) {
  const Call call = Begin("cuDevicePrimaryCtxReset");
  if (call.result != 0) return call.result;
  Context* primary = ContextOf(device - 1000);
  if (primary == nullptr) return Refuse("cuDevicePrimaryCtxReset of no device", kInvalidDevice);
  if (primary->error == 0) return Refuse("a reset of a context that works", kInvalidContext);
  Destroy(primary);
  return 0;
}
int cuCtxPushCurrent_v2(void* context) { return PushContext(context); }
int cuCtxPopCurrent_v2(void** context) {
  const Call call = Begin("cuCtxPopCurrent");
  if (Stack().empty()) return Refuse("cuCtxPopCurrent of nothing", kInvalidContext);
  *context = Stack().back();
  Stack().pop_back();
  --TheState().driver.current;
  return call.result;
}

}  // extern "C"
