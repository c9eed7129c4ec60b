#include "tools/quillon/inspect/ContactSheet.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "tools/quillon/clip/PictureSource.h"
#include "tools/quillon/picture/MapPicture.h"
#include "tools/quillon/picture/PictureForEye.h"
#include "tools/quillon/picture/SceneLight.h"
#include "tools/quillon/plot/CurveStyle.h"

namespace Quillon::Cli {

namespace {

constexpr std::int64_t kPictures = 12;
constexpr int kColumns = 4;
constexpr int kCellWidth = 320;
constexpr int kMargin = 16;
constexpr int kCaption = 20;

using Rgb = std::array<std::uint8_t, 3>;

/// sRGB codes as linear light (IEC 61966-2-1).
double LightOf(std::uint8_t code) {
  static const auto kTable = [] {
    std::array<double, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
      const double signal = static_cast<double>(i) / 255.0;
      table[i] = signal <= 0.04045 ? signal / 12.92 : std::pow((signal + 0.055) / 1.055, 2.4);
    }
    return table;
  }();
  return kTable[code];
}

std::uint8_t CodeOf(double light) {
  const double signal =
      light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1.0 / 2.4) - 0.055;
  return static_cast<std::uint8_t>(std::lround(std::clamp(signal, 0.0, 1.0) * 255.0));
}

/// The mean light of the pixels of a box.
Rgb MeanOf(const Bitmap& bitmap, int left, int top, int right, int bottom) {
  std::array<double, 3> sum{};
  for (int y = top; y < bottom; ++y) {
    for (int x = left; x < right; ++x) {
      const std::size_t at = 4 * (static_cast<std::size_t>(y) * bitmap.width + x);
      for (std::size_t c = 0; c < 3; ++c) sum[c] += LightOf(bitmap.bgra[at + 2 - c]);
    }
  }
  const double count = static_cast<double>(right - left) * (bottom - top);
  return {CodeOf(sum[0] / count), CodeOf(sum[1] / count), CodeOf(sum[2] / count)};
}

/// Scaled to the width of a cell, or as it is where it is smaller.
Picture Small(const Bitmap& bitmap) {
  Picture small;
  small.width = std::min(kCellWidth, bitmap.width);
  small.height = std::max(1, bitmap.height * small.width / bitmap.width);
  small.rgb.reserve(static_cast<std::size_t>(small.width) * small.height);
  const auto edge = [](int i, int from, int to) {
    return static_cast<int>(std::int64_t{i} * from / to);
  };
  for (int y = 0; y < small.height; ++y) {
    const int top = edge(y, bitmap.height, small.height);
    const int bottom = std::max(top + 1, edge(y + 1, bitmap.height, small.height));
    for (int x = 0; x < small.width; ++x) {
      const int left = edge(x, bitmap.width, small.width);
      const int right = std::max(left + 1, edge(x + 1, bitmap.width, small.width));
      small.rgb.push_back(MeanOf(bitmap, left, top, right, bottom));
    }
  }
  return small;
}

struct SheetPicture {
  std::int64_t number = 0;
  Picture picture;
};

std::vector<SheetPicture> CollectPictures(const SheetSource& sheet, double peakNits) {
  const std::int64_t count = CountPictures(sheet.input, sheet.maxPixels);
  const std::int64_t wanted = std::min(kPictures, count);
  const auto source =
      OpenPictures(sheet.input, {24, 1}, nullptr, 0, DamagePolicy::Stop, sheet.maxPixels);
  std::vector<SheetPicture> pictures;
  while (const auto next = source->Next()) {
    // NOLINTNEXTLINE(bugprone-unchecked-optional-access): the loop checks it
    const ClipPicture& picture = *next;
    const auto taken = static_cast<std::int64_t>(pictures.size());
    if (taken == wanted) break;
    if (picture.number < (2 * taken + 1) * count / (2 * wanted)) continue;
    TagPicture(picture.frame, TaggedColors(sheet.input, picture.tags.colors, sheet.colors),
               picture.tags.whiteNits, sheet.white);
    pictures.push_back({picture.number, Small(PictureForEye(picture.frame, peakNits, sheet.white,
                                                            sheet.input.string()))});
  }
  RequireWhole(sheet.input, source->Damage());
  return pictures;
}

}  // namespace

Scene MakeContactSheet(const SheetSource& source, double peakNits) {
  std::vector<SheetPicture> pictures = CollectPictures(source, peakNits);
  Scene sheet;
  sheet.title = source.input.filename().string();
  int cellHeight = 0;
  for (const auto& [number, picture] : pictures) {
    cellHeight = std::max(cellHeight, picture.height + kCaption);
  }
  const int rows = (static_cast<int>(pictures.size()) + kColumns - 1) / kColumns;
  sheet.width = kMargin + kColumns * (kCellWidth + kMargin);
  sheet.height = kMargin + rows * (cellHeight + kMargin);
  int place = 0;
  for (auto& [number, picture] : pictures) {
    const int column = place % kColumns;
    const int row = place / kColumns;
    const double x = kMargin + column * (kCellWidth + kMargin);
    const double y = kMargin + row * (cellHeight + kMargin);
    ++place;
    picture.box = {x, y, static_cast<double>(picture.width), static_cast<double>(picture.height)};
    sheet.texts.push_back({.text = "frame " + std::to_string(number),
                           .at = {x, y + picture.height + 14.0},
                           .size = 11.0,
                           .color = kQuietInk});
    sheet.pictures.push_back(std::move(picture));
  }
  return sheet;
}

}  // namespace Quillon::Cli
