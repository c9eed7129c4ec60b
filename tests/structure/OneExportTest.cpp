#include <algorithm>
#include <sstream>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "engine/Quillon.h"
#include "tests/structure/Symbols.h"

static_assert(std::is_same_v<decltype(&Quillon::ApplyGamutMapping),
                             int (*)(const orvcore::classref::InterfaceRef<PX::IVideoFrame>&,
                                     const PX::GamutMappingUtils::GamutMappingSettings&,
                                     orvcore::classref::InterfaceRef<PX::IVideoFrame>&)>);

TEST(OneExport, IsApplyGamutMapping) {
  const std::vector<Symbol> symbols = ReadDynamicSymbols(QUILLON_LIBRARY);
  for (const Symbol& symbol : symbols) {
    EXPECT_EQ(symbol.name,
              "Quillon::ApplyGamutMapping(orvcore::classref::InterfaceRef<PX::IVideoFrame> const&, "
              "PX::GamutMappingUtils::GamutMappingSettings const&, "
              "orvcore::classref::InterfaceRef<PX::IVideoFrame>&)");
    EXPECT_EQ(symbol.type, 'T') << symbol.name;
  }
  EXPECT_EQ(symbols.size(), 1U);
}

TEST(OneExport, IsSoughtAmongAllDynamicSymbols) {
  const std::vector<Symbol> symbols = ReadDynamicSymbols(QUILLON_ORVCORE_LIBRARY);
  EXPECT_GT(symbols.size(), 1U);
  EXPECT_TRUE(std::any_of(symbols.begin(), symbols.end(), [](const Symbol& symbol) {
    return symbol.type == 'T' && symbol.name.starts_with("orvcore::debug::TraceEnabled(");
  }));
}

TEST(Exports, OfTheMapperAreItsInterface) {
  const std::vector<Symbol> symbols = ReadDynamicSymbols(QUILLON_MAPPER_LIBRARY);
  EXPECT_GT(symbols.size(), 1U);
  for (const Symbol& symbol : symbols) {
    EXPECT_TRUE(symbol.name.starts_with("Quillon::Mapper::")) << symbol.name;
  }
  EXPECT_TRUE(std::any_of(symbols.begin(), symbols.end(), [](const Symbol& symbol) {
    return symbol.type == 'T' && symbol.name.starts_with("Quillon::Mapper::Plan::Map(");
  }));
}

TEST(Exports, OfDevicesHaveNoFunctionOfOpenCl) {
  const std::vector<Symbol> symbols = ReadDynamicSymbols(QUILLON_IRONLANE_LIBRARY);
  EXPECT_GT(symbols.size(), 1U);
  for (const Symbol& symbol : symbols) {
    EXPECT_FALSE(symbol.name.starts_with("cl") && symbol.name.find(':') == std::string::npos)
        << symbol.name << " would stand before the one of a program that links OpenCL itself";
  }
}

#ifdef QUILLON_MODULES
TEST(Modules, ExportTheirTableAlone) {
  std::istringstream modules(QUILLON_MODULES);
  for (std::string module; std::getline(modules, module, ':');) {
    const std::vector<Symbol> symbols = ReadDynamicSymbols(module);
    ASSERT_EQ(symbols.size(), 1U) << module;
    EXPECT_EQ(symbols.front().name, "QuillonModule") << module;
  }
}
#endif
