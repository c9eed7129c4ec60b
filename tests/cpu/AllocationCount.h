#pragma once

/// Calls of the global operator new so far, by any thread. For programs that link
/// AllocationCount.cpp, which replaces it.
long AllocationCount();
