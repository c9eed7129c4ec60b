#include "tools/quillon/compare/CompareViews.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

#include "tools/quillon/compare/CompareOptions.h"
#include "tools/quillon/compare/FalseColors.h"
#include "tools/quillon/compare/ViewLegend.h"
#include "tools/quillon/picture/PictureForEye.h"

namespace Quillon::Cli {

namespace {

constexpr FalseColor kDivider = {255, 0, 255};
constexpr std::uint8_t kBackground = 255;
constexpr std::ptrdiff_t kPixelBytes = 4;

Bitmap MakeBitmap(int width, int height) {
  const std::size_t bytes = std::size_t{kPixelBytes} * width * height;
  return {width, height, std::vector<std::uint8_t>(bytes, kBackground)};
}

std::uint8_t* PixelAt(Bitmap& bitmap, int x, int y) {
  return bitmap.bgra.data() + kPixelBytes * (std::ptrdiff_t{y} * bitmap.width + x);
}

const std::uint8_t* PixelAt(const Bitmap& bitmap, int x, int y) {
  return bitmap.bgra.data() + kPixelBytes * (std::ptrdiff_t{y} * bitmap.width + x);
}

void SetPixel(std::uint8_t* bgra, const FalseColor& color) {
  std::reverse_copy(color.begin(), color.end(), bgra);
}

/// Copies the columns from `first` up to `last` of one bitmap to where `x` is in another.
void CopyColumns(const Bitmap& from, int first, int last, Bitmap& to, int x) {
  for (int y = 0; y < from.height; ++y) {
    std::copy(PixelAt(from, first, y), PixelAt(from, first, y) + kPixelBytes * (last - first),
              PixelAt(to, x, y));
  }
}

void DrawDivider(Bitmap& bitmap, int x) {
  for (int y = 0; y < bitmap.height; ++y) SetPixel(PixelAt(bitmap, x, y), kDivider);
}

Bitmap DrawSideBySide(const Bitmap& a, const Bitmap& b) {
  Bitmap view = MakeBitmap(a.width + 1 + b.width, a.height);
  CopyColumns(a, 0, a.width, view, 0);
  DrawDivider(view, a.width);
  CopyColumns(b, 0, b.width, view, a.width + 1);
  return view;
}

Bitmap DrawSplit(const Bitmap& a, const Bitmap& b, double share) {
  const int split = static_cast<int>(std::lround(share * a.width));
  Bitmap view = MakeBitmap(a.width, a.height);
  CopyColumns(a, 0, split, view, 0);
  CopyColumns(b, split, b.width, view, split);
  if (split > 0 && split < a.width) DrawDivider(view, split);
  return view;
}

Bitmap PutBelow(const Bitmap& legend, const Bitmap& picture) {
  Bitmap view = MakeBitmap(std::max(picture.width, legend.width), picture.height + legend.height);
  CopyColumns(picture, 0, picture.width, view, 0);
  for (int y = 0; y < legend.height; ++y) {
    std::copy(PixelAt(legend, 0, y), PixelAt(legend, 0, y) + kPixelBytes * legend.width,
              PixelAt(view, 0, picture.height + y));
  }
  return view;
}

Bitmap DrawDeltaE(const Comparison& comparison) {
  Bitmap map = MakeBitmap(comparison.width, comparison.height);
  std::uint8_t* pixel = map.bgra.data();
  for (const float deltaE : comparison.deltaE) {
    SetPixel(pixel, DeltaEColor(deltaE));
    pixel += kPixelBytes;
  }
  std::vector<LegendEntry> entries;
  entries.reserve(kDeltaEBands.size() + 1);
  for (const DeltaEBand& band : kDeltaEBands) {
    entries.push_back({std::string(band.label), band.color});
  }
  entries.push_back({"not finite", kNotFiniteColor});
  return PutBelow(DrawLegend("delta-E ITP", entries), map);
}

/// A darkened grey, over which the marks stand out.
FalseColor GreyOf(const std::uint8_t* bgra) {
  constexpr double kDarkened = 0.7;
  const double luma = 0.0722 * bgra[0] + 0.7152 * bgra[1] + 0.2126 * bgra[2];
  const auto grey = static_cast<std::uint8_t>(std::lround(kDarkened * luma));
  return {grey, grey, grey};
}

void DrawMarks(const PixelMarks& marks, Bitmap& picture) {
  std::uint8_t* pixel = picture.bgra.data();
  for (const std::uint8_t mark : marks.marks) {
    SetPixel(pixel, MarkColor(mark, GreyOf(pixel)));
    pixel += kPixelBytes;
  }
}

Bitmap DrawClip(Bitmap a, Bitmap b, const Comparison& comparison, const CompareSettings& compared) {
  DrawMarks(comparison.marksA, a);
  DrawMarks(comparison.marksB, b);
  const std::string gamut(ComparedGamutName(compared.gamutPrimaries));
  const std::vector<LegendEntry> entries = {{"clipped", kClippedColor},
                                            {"out of " + gamut, kOutOfGamutColor},
                                            {"both", kBothColor},
                                            {"not finite", kNotFiniteColor}};
  const Bitmap legend = DrawLegend("A on the left, B on the right", entries);
  return PutBelow(legend, DrawSideBySide(a, b));
}

}  // namespace

Bitmap DrawCompareView(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b,
                       const Comparison& comparison, const CompareSettings& compared,
                       const ViewSettings& settings) {
  if (settings.view == CompareView::DeltaE) return DrawDeltaE(comparison);
  const Bitmap seenA = PictureForEye(a, settings.hdrPeakNits, compared.white, "A");
  const Bitmap seenB = PictureForEye(b, settings.hdrPeakNits, compared.white, "B");
  switch (settings.view) {
    case CompareView::Split:
      return DrawSplit(seenA, seenB, settings.splitShare);
    case CompareView::Clip:
      return DrawClip(seenA, seenB, comparison, compared);
    default:
      return DrawSideBySide(seenA, seenB);
  }
}

}  // namespace Quillon::Cli
