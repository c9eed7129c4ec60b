#include "host/os/DynamicLibrary.h"

#include <string>
#include <string_view>

#include <dlfcn.h>

namespace {

/// The name of a Windows library here; others are taken as they are.
std::string NameHere(std::wstring_view name) {
  if (name == L"nvcuda.dll") return "libcuda.so.1";
  if (name == L"OpenCL.dll") return "libOpenCL.so.1";
  std::string narrow;
  for (const wchar_t c : name) {
    if (c > 0x7F) return {};
    narrow += static_cast<char>(c);
  }
  return narrow;
}

}  // namespace

HMODULE LoadLibraryW(const wchar_t* fileName) {
  if (fileName == nullptr || *fileName == L'\0') return nullptr;
  const std::string name = NameHere(fileName);
  return name.empty() ? nullptr : dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
}

FARPROC GetProcAddress(HMODULE module, const char* name) {
  if (module == nullptr || name == nullptr) return nullptr;
  return reinterpret_cast<FARPROC>(dlsym(module, name));
}
