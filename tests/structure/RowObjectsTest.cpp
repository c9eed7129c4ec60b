#include <algorithm>
#include <cctype>
#include <sstream>

#include <gtest/gtest.h>

#include "tests/structure/Symbols.h"

namespace {

std::vector<std::string> RowObjects() {
  std::vector<std::string> objects;
  for (const char* list : {QUILLON_ROW_OBJECTS, QUILLON_HOST_ROW_OBJECTS}) {
    std::istringstream names(list);
    for (std::string name; std::getline(names, name, ':');) objects.push_back(name);
  }
  return objects;
}

/// Of one function in several object files the linker takes any. One that was built for a newer
/// processor must not be among them: all but the entry has to be local to its file.
TEST(RowObjects, ShareNothingButTheirEntryWithCodeForOlderProcessors) {
  const std::vector<std::string> objects = RowObjects();
#if defined(__x86_64__)
  ASSERT_EQ(objects.size(), 4U);
#endif
  for (const std::string& object : objects) {
    int entries = 0;
    for (const Symbol& symbol : ReadObjectSymbols(object)) {
      const bool isEntry = symbol.type == 'T' && (symbol.name.starts_with("Quillon::MapRun") ||
                                                  symbol.name.starts_with("RefHost::RowFunctions"));
      // A pointer that sanitized builds unwind by; no code.
      if (symbol.name.starts_with("DW.ref.")) continue;
      entries += isEntry ? 1 : 0;
      EXPECT_TRUE(isEntry || std::islower(static_cast<unsigned char>(symbol.type)) != 0)
          << symbol.type << ' ' << symbol.name << " in " << object;
      EXPECT_EQ(std::string("uvw").find(symbol.type), std::string::npos) << symbol.name;
    }
    EXPECT_EQ(entries, 1) << object;
  }
}

TEST(RowObjects, AreLookedAtWithAllTheirFunctions) {
  for (const std::string& object : RowObjects()) {
    const std::vector<Symbol> symbols = ReadObjectSymbols(object);
    EXPECT_TRUE(std::any_of(symbols.begin(), symbols.end(), [](const Symbol& symbol) {
      return symbol.type == 't' && (symbol.name.find("MapBlocks") != std::string::npos ||
                                    symbol.name.find("EncodeBlock") != std::string::npos);
    })) << object;
  }
}

}  // namespace
