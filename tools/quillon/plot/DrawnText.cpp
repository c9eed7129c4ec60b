#include "tools/quillon/plot/DrawnText.h"

#include <cstddef>
#include <cstdint>

namespace Quillon::Cli {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

std::uint8_t ByteAt(std::string_view text, std::size_t i) {
  return i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0;
}

/// Bytes of the character that a first byte begins; 0: none.
std::size_t LengthOf(std::uint8_t first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

/// The same, 0 too where the bytes after it are not what they should be.
std::size_t WholeLength(std::string_view text, std::size_t at) {
  const std::uint8_t first = ByteAt(text, at);
  const std::size_t length = LengthOf(first);
  for (std::size_t i = 1; i < length; ++i) {
    if ((ByteAt(text, at + i) & 0xC0U) != 0x80U) return 0;
  }
  const std::uint8_t second = ByteAt(text, at + 1);
  const bool outside = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                       (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
  return outside ? 0 : length;
}

bool CanStand(std::string_view character) {
  constexpr std::uint8_t kDelete = 0x7F;
  const auto first = static_cast<std::uint8_t>(character[0]);
  return first >= ' ' && first != kDelete && character != "\xEF\xBF\xBE" &&
         character != "\xEF\xBF\xBF";
}

}  // namespace

std::string DrawnText(std::string_view text) {
  std::string drawn;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = WholeLength(text, at);
    const std::string_view character = text.substr(at, length);
    drawn += length > 0 && CanStand(character) ? character : kReplacement;
    at += length > 0 ? length : 1;
  }
  return drawn;
}

}  // namespace Quillon::Cli
