#pragma once

#include <string>
#include <vector>

/// A symbol that a shared library defines for others.
struct DynamicSymbol {
  char type = '?';   ///< as nm writes it: T for a function
  std::string name;  ///< demangled
};

/// The defined symbols in the dynamic symbol table of a library. Throws std::runtime_error when it
/// cannot be read.
std::vector<DynamicSymbol> ReadDynamicSymbols(const std::string& library);
