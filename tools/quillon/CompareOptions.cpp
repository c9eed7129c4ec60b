#include "tools/quillon/CompareOptions.h"

std::string_view ComparedGamutName(std::uint8_t primaries) {
  for (const auto& choice : kComparedGamuts) {
    if (choice.value == primaries) return choice.name;
  }
  return {};
}
