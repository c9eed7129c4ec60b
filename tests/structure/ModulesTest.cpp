#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/structure/Symbols.h"

TEST(Modules, ExportTheirTableAlone) {
  std::istringstream modules(QUILLON_MODULES);
  for (std::string module; std::getline(modules, module, ':');) {
    const std::vector<Symbol> symbols = ReadDynamicSymbols(module);
    ASSERT_EQ(symbols.size(), 1U) << module;
    EXPECT_EQ(symbols.front().name, "QuillonModule") << module;
  }
}
