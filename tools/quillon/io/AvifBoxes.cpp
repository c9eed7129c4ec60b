#include "tools/quillon/io/AvifBoxes.h"

#include <algorithm>
#include <string_view>

namespace Quillon::Cli {

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

/// Calls `visit` with each whole box of the bytes, until one is not whole. True: all are.
template <class Visitor>
bool VisitBoxes(std::span<const std::uint8_t> bytes, const Visitor& visit) {
  while (!bytes.empty()) {
    const std::uint64_t size = BoxSize(bytes);
    if (size == 0) return false;
    visit(bytes.first(static_cast<std::size_t>(size)));
    bytes = bytes.subspan(static_cast<std::size_t>(size));
  }
  return true;
}

bool IsNamed(std::span<const std::uint8_t> box, std::string_view name) {
  return Equals(box.subspan(4, 4), name);
}

/// Calls `visit` with what the boxes of this name hold behind `header` bytes.
template <class Visitor>
void VisitContents(std::span<const std::uint8_t> boxes, std::string_view name, std::size_t header,
                   const Visitor& visit) {
  VisitBoxes(boxes, [&](std::span<const std::uint8_t> box) {
    if (IsNamed(box, name) && box.size() > header) visit(box.subspan(header));
  });
}

/// The sizes among the item properties ("meta", "iprp", "ipco", "ispe").
std::vector<AvifSize> SizesOf(std::span<const std::uint8_t> file) {
  constexpr std::size_t kHeader = 8;
  constexpr std::size_t kFullHeader = 12;  // with version and flags
  std::vector<AvifSize> sizes;
  const auto collect = [&sizes](std::span<const std::uint8_t> size) {
    if (size.size() < 8) return;
    sizes.push_back({static_cast<std::int64_t>(BigEndian(size.first(4))),
                     static_cast<std::int64_t>(BigEndian(size.subspan(4, 4)))});
  };
  VisitContents(file, "meta", kFullHeader, [&](auto meta) {
    VisitContents(meta, "iprp", kHeader, [&](auto properties) {
      VisitContents(properties, "ipco", kHeader, [&](auto container) {
        VisitContents(container, "ispe", kFullHeader, collect);
      });
    });
  });
  return sizes;
}

}  // namespace

AvifBoxes ScanAvifBoxes(std::span<const std::uint8_t> file) {
  AvifBoxes boxes;
  boxes.complete = VisitBoxes(file, [&boxes](std::span<const std::uint8_t> box) {
    if (IsNamed(box, "ftyp")) boxes.hasGainMap = NamesBrand(box, "tmap");
  });
  boxes.sizes = SizesOf(file);
  return boxes;
}

}  // namespace Quillon::Cli
