#include "refhost/orvcore/Arena.h"

#include <algorithm>
#include <system_error>
#include <thread>

#include <windows.h>

namespace RefHost {

namespace {

void CALLBACK Call(PTP_CALLBACK_INSTANCE /*instance*/, void* work) {
  reinterpret_cast<void (*)()>(work)();
}

/// Threads of the pool may still be on their way into this library when its last user is unloaded.
void StayLoaded() {
  HMODULE self = nullptr;
  const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN;
  if (!GetModuleHandleExW(flags, reinterpret_cast<const wchar_t*>(&Call), &self)) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
  }
}

}  // namespace

int Arena::Parallelism() {
  return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

void Arena::Enqueue(void (*work)()) {
  static const bool kStaysLoaded = (StayLoaded(), true);
  static_cast<void>(kStaysLoaded);
  if (!TrySubmitThreadpoolCallback(Call, reinterpret_cast<void*>(work), nullptr)) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
  }
}

}  // namespace RefHost
