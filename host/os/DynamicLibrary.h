#pragma once

// The two calls of the operating system by which a library is found at run time: Windows' own, and
// elsewhere functions of these names in the library `hostos`. The engine calls them to look for
// NVIDIA's driver, which no mapping needs: a host without CUDA may return null from both.

#ifdef _WIN32
#include <windows.h>
#else

/// A library that was opened, or null. The engine never closes one.
using HMODULE = void*;
/// A function of such a library, to be cast to its own type, or null.
using FARPROC = void (*)();

extern "C" {
/// Opens the library of this name, a wide text that ends with 0: "nvcuda.dll" on every system, for
/// which a host opens what the driver is called there. Null where there is none. Any thread.
HMODULE LoadLibraryW(const wchar_t* fileName);
/// The function of this name in an opened library; null where it has none. Any thread.
FARPROC GetProcAddress(HMODULE module, const char* name);
}

#endif
