#include "tests/windows/CoffSymbols.h"

#include <cstdint>

#include "tests/windows/Bytes.h"

namespace {

constexpr std::size_t kSymbolBytes = 18;
constexpr std::uint8_t kExternal = 2;
constexpr std::uint8_t kStatic = 3;
constexpr std::uint8_t kWeakExternal = 105;

/// A name of up to eight bytes is in the symbol, a longer one in the table of texts.
std::string NameAt(std::string_view object, std::size_t symbol, std::size_t texts) {
  if (ReadNumber<std::uint32_t>(object, symbol) == 0) {
    return std::string(ReadText(object, texts + ReadNumber<std::uint32_t>(object, symbol + 4)));
  }
  const std::string_view name = object.substr(symbol, 8);
  return std::string(name.substr(0, name.find('\0')));
}

bool IsCode(std::string_view object, std::int16_t section) {
  constexpr std::uint32_t kContainsCode = 0x20;
  const std::size_t header = 20 + (static_cast<std::size_t>(section) - 1) * 40;
  return (ReadNumber<std::uint32_t>(object, header + 36) & kContainsCode) != 0;
}

}  // namespace

std::vector<CoffSymbol> ReadCoffSymbols(std::string_view object) {
  constexpr std::uint16_t kX64 = 0x8664;
  if (ReadNumber<std::uint16_t>(object, 0) != kX64) throw std::runtime_error("no x64 object file");
  const std::size_t symbols = ReadNumber<std::uint32_t>(object, 8);
  const std::size_t count = ReadNumber<std::uint32_t>(object, 12);
  std::vector<CoffSymbol> found;
  for (std::size_t i = 0; i < count;) {
    const std::size_t symbol = symbols + i * kSymbolBytes;
    const auto section = ReadNumber<std::int16_t>(object, symbol + 12);
    const auto storage = ReadNumber<std::uint8_t>(object, symbol + 16);
    i += 1U + ReadNumber<std::uint8_t>(object, symbol + 17);
    const bool isNamed = storage == kExternal || storage == kStatic || storage == kWeakExternal;
    if (!isNamed || section <= 0) continue;
    found.push_back({.name = NameAt(object, symbol, symbols + count * kSymbolBytes),
                     .isCode = IsCode(object, section),
                     .isLocal = storage == kStatic,
                     .isWeak = storage == kWeakExternal});
  }
  return found;
}
