// There is no driver to look for.

#include "host/os/DynamicLibrary.h"

HMODULE LoadLibraryW(const wchar_t* /*fileName*/) { return nullptr; }
FARPROC GetProcAddress(HMODULE /*module*/, const char* /*name*/) { return nullptr; }
