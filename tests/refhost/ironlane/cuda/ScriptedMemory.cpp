// Memory of devices and of the host, and copies between them.

#include <cstring>
#include <utility>

#include "tests/refhost/ironlane/cuda/ScriptedState.h"

namespace scripted {

namespace {

constexpr int kReleaseThreshold = 4;
constexpr std::size_t kPage = 4096;
constexpr std::size_t kMostBytes = std::size_t{8} << 30U;

/// The bytes themselves.
void* Bytes(std::uint64_t pointer) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the driver's interface has numbers for it.
  return reinterpret_cast<void*>(pointer);
}

std::uint64_t Reserve(const Call& call, std::size_t bytes) {
  Memory made{.context = call.context, .bytes = std::vector<std::uint8_t>(bytes)};
  const auto pointer = reinterpret_cast<std::uint64_t>(made.bytes.data());
  TheState().memory.emplace(pointer, std::move(made));
  ++TheState().driver.reservations;
  return pointer;
}

/// Memory that a pool has already, which this stream may have now; 0 where there is none.
std::uint64_t FromPool(const Call& call, const Stream* stream, std::size_t bytes) {
  for (auto& [pointer, block] : TheState().memory) {
    const bool isFree = block.isPooled && !block.isGiven && block.context == call.context;
    if (isFree && block.bytes.size() == bytes && (block.freedOn == stream || !block.isThere)) {
      return pointer;
    }
  }
  return 0;
}

bool IsPinned(const void* memory, std::size_t bytes) {
  const auto& pinned = TheState().pinned;
  auto above = pinned.upper_bound(memory);
  if (above == pinned.begin()) return false;
  --above;
  const auto offset = static_cast<std::size_t>(static_cast<const std::uint8_t*>(memory) -
                                               static_cast<const std::uint8_t*>(above->first));
  return offset <= above->second.bytes && bytes <= above->second.bytes - offset;
}

/// A copy between the host and a device: at once unless the host's memory is pinned.
int CopyWithHost(const std::string& function, void* handle, const void* host, std::uint64_t device,
                 std::size_t bytes, const std::function<void()>& copy) {
  const Call call = BeginInContext(function);
  if (call.result != 0) return call.result;
  Stream* stream = StreamAt(handle, call, function);
  if (stream == nullptr) return kInvalidHandle;
  if (Given(call.context, device, bytes) == nullptr) {
    return Refuse(function + " of memory that is not this device's", kInvalidValue);
  }
  Give(*stream, function, [context = call.context, device, bytes, copy] {
    if (There(context, device, bytes) == nullptr) return kIllegalAddress;
    copy();
    return 0;
  });
  if (IsPinned(host, bytes)) return 0;
  ++TheState().driver.pageable;
  return Wait(*stream, stream->given);
}

}  // namespace

}  // namespace scripted

using namespace scripted;  // NOLINT(google-build-using-namespace): the driver's own functions

extern "C" {

int cuMemAlloc_v2(std::uint64_t* pointer, std::size_t bytes) {
  const Call call = BeginInContext("cuMemAlloc");
  if (call.result != 0) return call.result;
  if (bytes == 0) return Refuse("cuMemAlloc of nothing", kInvalidValue);
  if (bytes > kMostBytes) return kOutOfMemory;
  *pointer = Reserve(call, bytes);
  TheState().driver.memory.emplace(*pointer, bytes);
  return 0;
}
int cuMemFree_v2(std::uint64_t pointer) {
  const Call call = BeginInContext("cuMemFree");
  if (call.context == nullptr || call.context->error != 0) return call.result;
  State& state = TheState();
  const auto found = state.memory.find(pointer);
  if (found == state.memory.end() || !found->second.isGiven ||
      found->second.context != call.context) {
    return Refuse("cuMemFree of what is not this device's", kInvalidValue);
  }
  // It waits for all work.
  ++state.driver.waits;
  for (auto& [handle, stream] : state.streams) {
    if (stream->context == call.context) RunUntil(*stream, stream->given);
  }
  state.memory.erase(found);
  state.driver.memory.erase(pointer);
  return call.result;
}
int cuDeviceGetDefaultMemPool(void** pool, int device) {
  const Call call = Begin("cuDeviceGetDefaultMemPool");
  if (call.result != 0) return call.result;
  Context* context = ContextOf(device - 1000);
  if (context == nullptr) return Refuse("cuDeviceGetDefaultMemPool of no device", kInvalidDevice);
  *pool = context;
  return 0;
}
int cuMemPoolGetAttribute(void* pool, int attribute, void* value) {
  const Call call = Begin("cuMemPoolGetAttribute");
  if (call.result != 0) return call.result;
  if (attribute != kReleaseThreshold) return Refuse("cuMemPoolGetAttribute", kInvalidValue);
  *static_cast<std::uint64_t*>(value) = static_cast<Context*>(pool)->releaseThreshold;
  return 0;
}
int cuMemPoolSetAttribute(void* pool, int attribute, void* value) {
  const Call call = Begin("cuMemPoolSetAttribute");
  if (call.result != 0) return call.result;
  if (attribute != kReleaseThreshold) return Refuse("cuMemPoolSetAttribute", kInvalidValue);
  static_cast<Context*>(pool)->releaseThreshold = *static_cast<std::uint64_t*>(value);
  return 0;
}
int cuMemPoolTrimTo(void* pool, std::size_t keep) {
  const Call call = Begin("cuMemPoolTrimTo");
  if (call.result != 0) return call.result;
  auto* context = static_cast<Context*>(pool);
  const std::uint64_t threshold = std::exchange(context->releaseThreshold, keep);
  TrimPool(context);
  context->releaseThreshold = threshold;
  return 0;
}
int cuMemAllocAsync(std::uint64_t* pointer, std::size_t bytes, void* handle) {
  const Call call = BeginInContext("cuMemAllocAsync");
  if (call.result != 0) return call.result;
  State& state = TheState();
  if (!state.driver.devices[static_cast<std::size_t>(call.context->device)].hasPools) {
    return Refuse("cuMemAllocAsync where there are no pools", kNotSupported);
  }
  if (bytes == 0) return Refuse("cuMemAllocAsync of nothing", kInvalidValue);
  if (bytes > kMostBytes) return kOutOfMemory;
  Stream* stream = StreamAt(handle, call, "cuMemAllocAsync");
  if (stream == nullptr) return kInvalidHandle;
  std::uint64_t made = FromPool(call, stream, bytes);
  if (made == 0) {
    made = Reserve(call, bytes);
    state.memory.at(made).isThere = false;
  }
  Memory& block = state.memory.at(made);
  block.isPooled = true;
  block.isGiven = true;
  Give(*stream, "cuMemAllocAsync", [made] {
    TheState().memory.at(made).isThere = true;
    return 0;
  });
  state.driver.memory.emplace(made, bytes);
  *pointer = made;
  return 0;
}
int cuMemFreeAsync(std::uint64_t pointer, void* handle) {
  const Call call = BeginInContext("cuMemFreeAsync");
  if (call.context == nullptr || call.context->error != 0) return call.result;
  State& state = TheState();
  Stream* stream = StreamAt(handle, call, "cuMemFreeAsync");
  if (stream == nullptr) return kInvalidHandle;
  const auto found = state.memory.find(pointer);
  if (found == state.memory.end() || !found->second.isGiven ||
      found->second.context != call.context) {
    return Refuse("cuMemFreeAsync of what is not this device's", kInvalidValue);
  }
  found->second.isGiven = false;
  found->second.freedOn = stream;
  state.driver.memory.erase(pointer);
  Give(*stream, "cuMemFreeAsync", [pointer] {
    TheState().memory.at(pointer).isThere = false;
    return 0;
  });
  return call.result;
}
int cuMemHostRegister_v2(void* memory, std::size_t bytes, unsigned flags) {
  const Call call = BeginInContext("cuMemHostRegister");
  if (call.result != 0) return call.result;
  if (bytes == 0 || flags > 3) return Refuse("cuMemHostRegister", kInvalidValue);
  if (reinterpret_cast<std::uintptr_t>(memory) % kPage != 0 || bytes % kPage != 0) {
    return Refuse("cuMemHostRegister of parts of pages, which others may have", kInvalidValue);
  }
  TheState().pinned[memory] = {call.context, bytes};
  ++TheState().driver.pinned;
  return 0;
}
int cuMemHostUnregister(void* memory) {
  const Call call = BeginInContext("cuMemHostUnregister");
  if (call.context == nullptr || call.context->error != 0) return call.result;
  if (TheState().pinned.erase(memory) == 0) {
    return Refuse("cuMemHostUnregister of what is not registered", kInvalidValue);
  }
  --TheState().driver.pinned;
  return call.result;
}
int cuMemcpyHtoDAsync_v2(std::uint64_t to, const void* from, std::size_t bytes, void* stream) {
  return CopyWithHost("cuMemcpyHtoDAsync", stream, from, to, bytes,
                      [=] { std::memcpy(Bytes(to), from, bytes); });
}
int cuMemcpyDtoHAsync_v2(void* to, std::uint64_t from, std::size_t bytes, void* stream) {
  return CopyWithHost("cuMemcpyDtoHAsync", stream, to, from, bytes,
                      [=] { std::memcpy(to, Bytes(from), bytes); });
}
int cuMemcpyDtoDAsync_v2(std::uint64_t to, std::uint64_t from, std::size_t bytes, void* handle) {
  const Call call = BeginInContext("cuMemcpyDtoDAsync");
  if (call.result != 0) return call.result;
  Stream* stream = StreamAt(handle, call, "cuMemcpyDtoDAsync");
  if (stream == nullptr) return kInvalidHandle;
  if (Given(call.context, to, bytes) == nullptr || Given(call.context, from, bytes) == nullptr) {
    return Refuse("cuMemcpyDtoDAsync of memory that is not this device's", kInvalidValue);
  }
  Give(*stream, "cuMemcpyDtoDAsync", [context = call.context, to, from, bytes] {
    if (There(context, to, bytes) == nullptr || There(context, from, bytes) == nullptr) {
      return kIllegalAddress;
    }
    std::memcpy(Bytes(to), Bytes(from), bytes);
    return 0;
  });
  return 0;
}

}  // extern "C"
