#include "tools/quillon/io/ExrClaims.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <span>
#include <string>

namespace Quillon::Cli {

namespace {

constexpr std::size_t kHeaderOffset = 8;  // behind the signature and the version
constexpr std::size_t kFlagsOffset = 5;
constexpr std::uint8_t kMultiPart = 0x10;
constexpr double kOffsetBytes = 8.0;  // of an entry of a chunk table
constexpr double kSmallTile = 1024.0 * 1024.0;

/// The most that deflate makes of a byte.
constexpr double kDeflate = 1032.0;
/// Run lengths make 128 bytes of two.
constexpr double kRuns = 64.0;

/// The most bytes of pixels for a byte of the file, by the code of the compression: none, RLE,
/// ZIPS, ZIP, PIZ (runs of a Huffman code, below deflate), PXR24 (deflate over three of four
/// bytes), B44, B44A (16 half numbers as 3 bytes at least), DWAA, DWAB (deflate over run lengths).
constexpr std::array<double, 10> kMostPixelBytes = {
    1.0,  kRuns, kDeflate,        kDeflate,       kDeflate, kDeflate * 4.0 / 3.0,
    11.0, 11.0,  kDeflate* kRuns, kDeflate* kRuns};

std::uint32_t LittleEndian(std::span<const std::uint8_t> bytes) {
  return bytes[0] | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
         std::uint32_t{bytes[3]} << 24;
}

std::int64_t Signed(std::span<const std::uint8_t> bytes) {
  return static_cast<std::int32_t>(LittleEndian(bytes));
}

struct Size {
  std::int64_t width = 0;
  std::int64_t height = 0;
  double Pixels() const { return static_cast<double>(width) * static_cast<double>(height); }
};

/// What the header of a part says.
struct Claims {
  std::optional<Size> data;
  std::optional<Size> display;
  std::optional<Size> tile;
  double pixelBytes = 0.0;
  double ratio = kMostPixelBytes.front();
  bool deep = false;
};

struct Attribute {
  std::string name;
  std::string type;
  std::span<const std::uint8_t> value;
};

/// The attributes of the headers, one after another.
class Attributes {
 public:
  explicit Attributes(const StillSource& source)
      : source_(source), rest_(std::span(source.bytes).subspan(kHeaderOffset)) {}

  /// Nothing at the end of a header.
  std::optional<Attribute> Next() {
    Attribute attribute;
    attribute.name = NextName();
    if (attribute.name.empty()) return std::nullopt;
    attribute.type = NextName();
    const std::int64_t size = Signed(Take(4));
    if (size < 0 || static_cast<std::uint64_t>(size) > rest_.size()) {
      FailDamaged(source_, "its attribute " + attribute.name + " claims " + std::to_string(size) +
                               " bytes, more than there are");
    }
    attribute.value = Take(static_cast<std::size_t>(size));
    return attribute;
  }

 private:
  std::span<const std::uint8_t> Take(std::size_t count) {
    if (count > rest_.size()) FailDamaged(source_, "its header ends too early");
    const auto taken = rest_.first(count);
    rest_ = rest_.subspan(count);
    return taken;
  }

  std::string NextName() {
    const auto end = std::find(rest_.begin(), rest_.end(), std::uint8_t{0});
    if (end == rest_.end()) FailDamaged(source_, "its header does not end");
    const auto bytes = Take(static_cast<std::size_t>(end - rest_.begin()) + 1);
    return {bytes.begin(), bytes.end() - 1};
  }

  const StillSource& source_;
  std::span<const std::uint8_t> rest_;
};

std::optional<Size> SizeOfBox(std::span<const std::uint8_t> value) {
  if (value.size() != 16) return std::nullopt;
  return Size{Signed(value.subspan(8, 4)) - Signed(value.first(4)) + 1,
              Signed(value.subspan(12, 4)) - Signed(value.subspan(4, 4)) + 1};
}

std::optional<Size> SizeOfTile(std::span<const std::uint8_t> value) {
  if (value.size() != 9) return std::nullopt;
  return Size{LittleEndian(value.first(4)), LittleEndian(value.subspan(4, 4))};
}

/// Bytes of a pixel: a name, a type (1: half), a flag, and how often there is a sample.
double PixelBytes(std::span<const std::uint8_t> list) {
  double bytes = 0.0;
  while (true) {
    const auto end = std::find(list.begin(), list.end(), std::uint8_t{0});
    list = list.subspan(static_cast<std::size_t>(end - list.begin()));
    if (list.size() < 17) return bytes;
    const double everyX = std::max<double>(1.0, LittleEndian(list.subspan(9, 4)));
    const double everyY = std::max<double>(1.0, LittleEndian(list.subspan(13, 4)));
    bytes += (LittleEndian(list.subspan(1, 4)) == 1 ? 2.0 : 4.0) / (everyX * everyY);
    list = list.subspan(17);
  }
}

void Note(const Attribute& attribute, Claims& claims) {
  const auto value = attribute.value;
  if (attribute.name == "dataWindow") claims.data = SizeOfBox(value);
  if (attribute.name == "displayWindow") claims.display = SizeOfBox(value);
  if (attribute.name == "tiles") claims.tile = SizeOfTile(value);
  if (attribute.name == "channels") claims.pixelBytes = PixelBytes(value);
  if (attribute.name == "type")
    claims.deep = std::string(value.begin(), value.end()).starts_with("deep");
  if (attribute.name == "compression" && value.size() == 1) {
    claims.ratio = kMostPixelBytes.at(std::min<std::size_t>(value[0], kMostPixelBytes.size() - 1));
  }
}

std::string Text(const Size& size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height) + " pixels";
}

void Check(const StillSource& source, const Claims& claims) {
  const double held = static_cast<double>(source.bytes.size());
  if (claims.display) CheckDimensions(source, claims.display->width, claims.display->height);
  if (!claims.data) return;
  const Size& data = *claims.data;
  CheckDimensions(source, data.width, data.height);
  if (!claims.deep) {
    CheckHeld(source, Text(data), data.Pixels() * claims.pixelBytes, held * claims.ratio);
  }
  if (!claims.tile) return;
  const Size& tile = *claims.tile;
  CheckHeld(source, "tiles of " + Text(tile), tile.Pixels() * claims.pixelBytes,
            std::max(held * claims.ratio, kSmallTile * claims.pixelBytes));
  const double tiles =
      std::ceil(static_cast<double>(data.width) / static_cast<double>(tile.width)) *
      std::ceil(static_cast<double>(data.height) / static_cast<double>(tile.height));
  CheckHeld(source, "tiles of " + Text(tile), tiles * kOffsetBytes, held);
}

}  // namespace

void CheckExrClaims(const StillSource& source) {
  if (source.bytes.size() < kHeaderOffset) FailDamaged(source, "its header ends too early");
  const bool multiPart = (source.bytes[kFlagsOffset] & kMultiPart) != 0;
  Attributes attributes(source);
  bool hasMore = true;
  while (hasMore) {
    Claims claims;
    bool isEmpty = true;
    while (const auto attribute = attributes.Next()) {
      Note(*attribute, claims);
      isEmpty = false;
    }
    Check(source, claims);
    hasMore = multiPart && !isEmpty;
  }
}

}  // namespace Quillon::Cli
