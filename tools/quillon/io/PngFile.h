#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Quillon::Cli {

/// A PNG file as a sequence of chunks, told without decoding them.
struct PngFile {
  /// What is to be decoded: the file but for its damaged ancillary chunks, in pieces.
  std::vector<std::span<const std::uint8_t>> pieces;
  /// Names of the ancillary chunks that are left out because their CRC is wrong, once each.
  std::vector<std::string> damaged;
  /// Bytes of compressed pixels.
  std::uint64_t pixelBytes = 0;
};

/// `file` begins with the signature, and outlives the result.
PngFile ScanPngFile(std::span<const std::uint8_t> file);

}  // namespace Quillon::Cli
