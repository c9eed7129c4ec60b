#include "tests/tools/io/PngFile.h"

#include <algorithm>
#include <stdexcept>

#include <zlib.h>

namespace Quillon::Cli {

namespace {

constexpr std::uint8_t kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

std::uint32_t Crc(const std::uint8_t* bytes, std::size_t count) {
  return static_cast<std::uint32_t>(crc32(0, bytes, static_cast<uInt>(count)));
}

Bytes Deflate(const Bytes& raw) {
  uLongf size = compressBound(static_cast<uLong>(raw.size()));
  Bytes packed(size);
  compress(packed.data(), &size, raw.data(), static_cast<uLong>(raw.size()));
  packed.resize(size);
  return packed;
}

std::uint32_t BigEndian(const std::uint8_t* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
         std::uint32_t{bytes[2]} << 8 | bytes[3];
}

}  // namespace

void AppendBigEndian(Bytes& bytes, std::uint64_t value, int count) {
  for (int shift = 8 * (count - 1); shift >= 0; shift -= 8) {
    bytes.push_back(static_cast<std::uint8_t>(value >> shift));
  }
}

Bytes PngFromChunks(const std::vector<PngChunk>& chunks) {
  Bytes file(std::begin(kSignature), std::end(kSignature));
  for (const PngChunk& chunk : chunks) {
    AppendBigEndian(file, chunk.data.size(), 4);
    const std::size_t start = file.size();
    file.insert(file.end(), chunk.name.begin(), chunk.name.end());
    file.insert(file.end(), chunk.data.begin(), chunk.data.end());
    AppendBigEndian(file, Crc(file.data() + start, file.size() - start), 4);
  }
  return file;
}

Bytes PngPicture::File() const {
  Bytes header;
  AppendBigEndian(header, width, 4);
  AppendBigEndian(header, height, 4);
  header.insert(header.end(), {bitDepth, colorType, 0, 0, 0});
  Bytes raw;
  for (const Bytes& row : rows) {
    raw.push_back(0);
    raw.insert(raw.end(), row.begin(), row.end());
  }
  std::vector<PngChunk> all{{"IHDR", header}};
  all.insert(all.end(), chunks.begin(), chunks.end());
  all.push_back({"IDAT", Deflate(raw)});
  all.push_back({"IEND", {}});
  return PngFromChunks(all);
}

std::vector<PngChunk> ChunksOfPng(const Bytes& file) {
  if (file.size() < 8 || !std::equal(std::begin(kSignature), std::end(kSignature), file.begin())) {
    throw std::runtime_error("no PNG signature");
  }
  std::vector<PngChunk> chunks;
  for (std::size_t at = 8; at < file.size();) {
    if (file.size() - at < 12) throw std::runtime_error("no room for a chunk");
    const std::size_t length = BigEndian(&file[at]);
    if (length > file.size() - at - 12) throw std::runtime_error("chunk too long");
    if (Crc(&file[at + 4], length + 4) != BigEndian(&file[at + 8 + length])) {
      throw std::runtime_error("wrong CRC");
    }
    const auto data = file.begin() + static_cast<std::ptrdiff_t>(at) + 8;
    chunks.push_back(
        {std::string(data - 4, data), Bytes(data, data + static_cast<std::ptrdiff_t>(length))});
    at += length + 12;
  }
  return chunks;
}

PngChunk FindChunk(const Bytes& file, const std::string& name) {
  PngChunk found;
  for (const PngChunk& chunk : ChunksOfPng(file)) {
    if (chunk.name != name) continue;
    if (!found.name.empty()) throw std::runtime_error("two chunks named " + name);
    found = chunk;
  }
  return found;
}

}  // namespace Quillon::Cli
