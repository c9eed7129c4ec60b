#pragma once

// What the scripted driver keeps: contexts, streams and memory as a driver has them.

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "tests/refhost/ironlane/cuda/ScriptedDriver.h"

namespace scripted {

// Errors by their numbers in the driver's interface.
inline constexpr int kInvalidValue = 1;
inline constexpr int kOutOfMemory = 2;
inline constexpr int kNotInitialized = 3;
inline constexpr int kInvalidDevice = 101;
inline constexpr int kInvalidContext = 201;
inline constexpr int kNoBinaryForGPU = 209;
inline constexpr int kInvalidPtx = 218;
inline constexpr int kUnsupportedPtxVersion = 222;
inline constexpr int kInvalidHandle = 400;
inline constexpr int kNotFound = 500;
inline constexpr int kIllegalAddress = 700;
inline constexpr int kNotSupported = 801;

/// Whether a context does not survive an error.
bool IsSticky(int error);

/// The primary context of a device.
struct Context {
  int device = 0;
  int retains = 0;
  int error = 0;  ///< what ended it, 0 while it lives
  std::uint64_t releaseThreshold = 0;
};

/// Work in its order, done when it is waited for.
struct Stream {
  Context* context = nullptr;
  std::deque<std::function<int()>> pending;
  std::uint64_t given = 0;
  std::uint64_t done = 0;
  int failure = 0;
};

/// A place in a stream.
struct Event {
  Context* context = nullptr;
  Stream* stream = nullptr;
  std::uint64_t ticket = 0;
};

struct Memory {
  Context* context = nullptr;
  std::vector<std::uint8_t> bytes;
  bool isGiven = true;  ///< allocated as far as calls are concerned
  bool isThere = true;  ///< and as far as the work is that has been done
  bool isPooled = false;
  Stream* freedOn = nullptr;
};

/// Memory of the host that devices reach.
struct Pinned {
  const Context* context = nullptr;
  std::size_t bytes = 0;
};

struct Module {
  Context* context = nullptr;
  std::string ptx;
};

struct Function {
  Context* context = nullptr;
  std::string name;
  std::vector<std::size_t> parameterBytes;
};

struct Link {
  Context* context = nullptr;
  std::string ptx;
};

/// A driver that nobody has used, of this library's version.
Driver FreshDriver();

struct State {
  Driver driver = FreshDriver();
  std::mutex mutex;
  bool isInitialized = false;
  std::vector<std::unique_ptr<Context>> contexts;
  std::map<void*, std::unique_ptr<Stream>> streams;
  std::map<void*, std::unique_ptr<Event>> events;
  std::map<void*, std::unique_ptr<Module>> modules;
  std::map<void*, std::unique_ptr<Function>> functions;
  std::map<void*, std::unique_ptr<Link>> links;
  std::map<std::uint64_t, Memory> memory;
  std::map<const void*, Pinned> pinned;
};

State& TheState();

/// One call of the driver: the lock, and with what it is to end at once.
struct Call {
  std::unique_lock<std::mutex> lock;
  int result = 0;
  Context* context = nullptr;
};

/// Begins a call that needs no context, or one that does.
Call Begin(const std::string& function);
Call BeginInContext(const std::string& function);

/// Writes a misuse down and gives its error. The lock is held here and in all below.
int Refuse(const std::string& what, int error);

/// The device's context, or null where there is no such device.
Context* ContextOf(int device);
/// Ends all that a context has.
void Destroy(Context* context);
/// Drops what belongs to a context from a table.
template <class Table>
void Drop(Table& table, const Context* context) {
  for (auto entry = table.begin(); entry != table.end();) {
    entry = entry->second->context == context ? table.erase(entry) : std::next(entry);
  }
}

/// The object behind a handle of the current context, or null, which is written down as a misuse.
template <class Object>
Object* At(std::map<void*, std::unique_ptr<Object>>& table, void* handle, const Call& call,
           const std::string& what) {
  const auto found = table.find(handle);
  if (found == table.end() || found->second->context != call.context) {
    Refuse(what + (handle == nullptr ? " that is null" : " that is not of this context"), 0);
    return nullptr;
  }
  return found->second.get();
}

/// A stream, which is never the null stream: this library's users make their own.
Stream* StreamAt(void* handle, const Call& call, const std::string& function);
/// Gives work to a stream; with the failure that the script has for this function.
void Give(Stream& stream, const std::string& function, std::function<int()> work);
/// Does a stream's work up to a place in it.
void RunUntil(Stream& stream, std::uint64_t ticket);
/// The same, and what a wait for it gives.
int Wait(Stream& stream, std::uint64_t ticket);

/// Memory of the context that holds these bytes, as calls or as work see it; null where there is
/// none.
Memory* Given(const Context* context, std::uint64_t pointer, std::size_t bytes);
Memory* There(const Context* context, std::uint64_t pointer, std::size_t bytes);
/// Gives pooled memory back that is more than the pool is to keep.
void TrimPool(const Context* context);

}  // namespace scripted
