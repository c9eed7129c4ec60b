#pragma once

#ifdef _WIN32
#include <windows.h>
#else

/// The two calls of the operating system by which a library is found at run time, for systems
/// that do not have them under these names.
using HMODULE = void*;
using FARPROC = void (*)();

extern "C" {
HMODULE LoadLibraryW(const wchar_t* fileName);
FARPROC GetProcAddress(HMODULE module, const char* name);
}

#endif
