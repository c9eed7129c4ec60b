#include "tests/structure/Symbols.h"

#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace {

std::string OutputOf(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  std::string output;
  char buffer[4096];
  while (const std::size_t got = fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, got);
  if (pclose(pipe) != 0) throw std::runtime_error("failed: " + command);
  return output;
}

std::vector<Symbol> ReadSymbols(const std::string& options, const std::string& file) {
  std::istringstream lines(
      OutputOf(QUILLON_NM " " + options + " -C --defined-only '" + file + "'"));
  std::vector<Symbol> symbols;
  std::string line;
  while (std::getline(lines, line)) {
    // "<address> <type> <name>"; a demangled name has spaces of its own.
    std::istringstream fields(line);
    std::string address;
    Symbol symbol;
    if (!(fields >> address >> symbol.type >> std::ws) || !std::getline(fields, symbol.name)) {
      throw std::runtime_error("not a line of nm: " + line);
    }
    symbols.push_back(symbol);
  }
  return symbols;
}

}  // namespace

std::vector<Symbol> ReadDynamicSymbols(const std::string& library) {
  return ReadSymbols("-D", library);
}

std::vector<std::string> ReadImportedSymbols(const std::string& library) {
  std::istringstream words(OutputOf(QUILLON_NM " -D --undefined-only '" + library + "'"));
  std::vector<std::string> names;
  std::string type;
  std::string name;
  while (words >> type >> name) names.push_back(name);
  return names;
}

std::vector<Symbol> ReadObjectSymbols(const std::string& object) { return ReadSymbols("", object); }
