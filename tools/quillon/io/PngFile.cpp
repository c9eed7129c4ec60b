#include "tools/quillon/io/PngFile.h"

#include <algorithm>

#include <zlib.h>

namespace Quillon::Cli {

namespace {

constexpr std::size_t kSignatureBytes = 8;
constexpr std::size_t kFrameBytes = 12;  // length, name and CRC

std::uint32_t BigEndian(std::span<const std::uint8_t> bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
         std::uint32_t{bytes[2]} << 8 | bytes[3];
}

/// Ancillary chunks begin with a small letter; names are letters.
bool IsAncillary(std::span<const std::uint8_t> name) {
  const auto isLetter = [](std::uint8_t c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; };
  return std::all_of(name.begin(), name.end(), isLetter) && (name[0] & 0x20) != 0;
}

bool HasRightCrc(std::span<const std::uint8_t> chunk) {
  const auto covered = chunk.subspan(4, chunk.size() - 8);
  return crc32_z(0, covered.data(), covered.size()) == BigEndian(chunk.last(4));
}

}  // namespace

PngFile ScanPngFile(std::span<const std::uint8_t> file) {
  PngFile scan;
  std::size_t begin = 0;  // of the piece
  std::size_t at = kSignatureBytes;
  while (file.size() - at >= kFrameBytes) {
    const std::size_t length = BigEndian(file.subspan(at, 4));
    if (length > file.size() - at - kFrameBytes) break;  // cut off, which decoding tells
    const auto chunk = file.subspan(at, length + kFrameBytes);
    const std::string name(chunk.begin() + 4, chunk.begin() + 8);
    if (name == "IDAT") scan.pixelBytes += length;
    if (IsAncillary(chunk.subspan(4, 4)) && !HasRightCrc(chunk)) {
      scan.pieces.push_back(file.subspan(begin, at - begin));
      begin = at + chunk.size();
      const bool isNew =
          std::find(scan.damaged.begin(), scan.damaged.end(), name) == scan.damaged.end();
      if (isNew) scan.damaged.push_back(name);
    }
    at += chunk.size();
  }
  scan.pieces.push_back(file.subspan(begin));
  return scan;
}

}  // namespace Quillon::Cli
