#include "tools/quillon/io/AvifBoxes.h"

#include <algorithm>
#include <string_view>

namespace {

std::uint64_t BigEndian(std::span<const std::uint8_t> bytes) {
  std::uint64_t value = 0;
  for (const std::uint8_t byte : bytes) value = value << 8 | byte;
  return value;
}

bool Equals(std::span<const std::uint8_t> bytes, std::string_view text) {
  return std::equal(bytes.begin(), bytes.end(), text.begin(), text.end(),
                    [](std::uint8_t a, char b) { return a == static_cast<std::uint8_t>(b); });
}

/// Size of the box that the bytes begin with, its header included; 0 when they cannot hold it.
std::uint64_t BoxSize(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < 8) return 0;
  std::uint64_t size = BigEndian(bytes.first(4));
  if (size == 0) return bytes.size();
  if (size == 1) size = bytes.size() < 16 ? 0 : BigEndian(bytes.subspan(8, 8));
  return size >= 8 && size <= bytes.size() ? size : 0;
}

/// The major brand, the minor version and the compatible brands follow each other in fours.
bool NamesBrand(std::span<const std::uint8_t> fileType, std::string_view brand) {
  for (std::size_t at = 8; at + 4 <= fileType.size(); at += 4) {
    if (Equals(fileType.subspan(at, 4), brand)) return true;
  }
  return false;
}

}  // namespace

AvifBoxes ScanAvifBoxes(std::span<const std::uint8_t> file) {
  AvifBoxes boxes;
  while (!file.empty()) {
    const std::uint64_t size = BoxSize(file);
    if (size == 0) return boxes;
    const auto box = file.first(static_cast<std::size_t>(size));
    if (Equals(box.subspan(4, 4), "ftyp")) boxes.hasGainMap = NamesBrand(box, "tmap");
    file = file.subspan(box.size());
  }
  boxes.complete = true;
  return boxes;
}
