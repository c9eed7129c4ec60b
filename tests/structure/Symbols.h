#pragma once

#include <string>
#include <vector>

/// A symbol that a shared library or an object file defines.
struct Symbol {
  char type = '?';   ///< as nm writes it: T for a function, t for one local to the file, W if weak
  std::string name;  ///< demangled
};

/// The defined symbols in the dynamic symbol table of a library: what it has for others. Throws
/// std::runtime_error when it cannot be read.
std::vector<Symbol> ReadDynamicSymbols(const std::string& library);

/// The symbols that a library has of others, as they are in the table: not demangled, with their
/// versions. Throws std::runtime_error when it cannot be read.
std::vector<std::string> ReadImportedSymbols(const std::string& library);

/// All symbols that an object file defines. Throws std::runtime_error when it cannot be read.
std::vector<Symbol> ReadObjectSymbols(const std::string& object);
