#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/tools/io/StillTestSupport.h"

namespace Quillon::Cli {

struct PngChunk {
  std::string name;
  Bytes data;
};

enum PngColorType : std::uint8_t { kGrey = 0, kRgb = 2, kPalette = 3, kGreyAlpha = 4, kRgba = 6 };

/// A PNG file by hand.
struct PngPicture {
  std::uint32_t width = 1;
  std::uint32_t height = 1;
  std::uint8_t bitDepth = 8;
  PngColorType colorType = kRgb;
  /// Chunks between the header and the pixels.
  std::vector<PngChunk> chunks;
  /// Rows without filter bytes.
  std::vector<Bytes> rows;

  Bytes File() const;
};

void AppendBigEndian(Bytes& bytes, std::uint64_t value, int count);

/// A PNG file from its chunks.
Bytes PngFromChunks(const std::vector<PngChunk>& chunks);

/// The chunks of a file. Throws where the signature, a length or a CRC is wrong.
std::vector<PngChunk> ChunksOfPng(const Bytes& file);

/// The one chunk of this name, or an empty one without a name.
PngChunk FindChunk(const Bytes& file, const std::string& name);

}  // namespace Quillon::Cli
