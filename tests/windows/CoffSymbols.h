#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A symbol that an object file defines.
struct CoffSymbol {
  std::string name;
  bool isCode = false;
  bool isLocal = false;
  /// One of those that stand in for a symbol that nothing else defines.
  bool isWeak = false;
};

/// The symbols of an object file for Windows, read from its bytes (Microsoft, "PE Format": the COFF
/// symbol table).
std::vector<CoffSymbol> ReadCoffSymbols(std::string_view object);
