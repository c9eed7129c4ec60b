#include "tests/structure/Symbols.h"

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

#include <cxxabi.h>

#include "tests/windows/CoffSymbols.h"
#include "tests/windows/PeExports.h"

namespace {

std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string Demangled(const std::string& name) {
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> text(
      abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), std::free);
  return text == nullptr ? name : text.get();
}

}  // namespace

std::vector<Symbol> ReadDynamicSymbols(const std::string& library) {
  std::vector<Symbol> symbols;
  for (const Export& entry : ReadExports(BytesOf(library))) {
    symbols.push_back({.type = entry.isCode ? 'T' : 'D', .name = Demangled(entry.name)});
  }
  return symbols;
}

std::vector<Symbol> ReadObjectSymbols(const std::string& object) {
  std::vector<Symbol> symbols;
  for (const CoffSymbol& symbol : ReadCoffSymbols(BytesOf(object))) {
    const char type = symbol.isWeak ? 'W' : (symbol.isCode ? 'T' : 'D');
    symbols.push_back({.type = symbol.isLocal ? static_cast<char>(std::tolower(type)) : type,
                       .name = Demangled(symbol.name)});
  }
  return symbols;
}
