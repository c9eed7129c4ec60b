#include "tools/quillon/plot/HueStrips.h"

#include <algorithm>
#include <cmath>

#include "tools/quillon/plot/CurveStyle.h"

namespace Quillon::Cli {

namespace {

constexpr double kLeft = 130.0;
constexpr int kColumns = 1000;
constexpr int kRowHeight = 11;
constexpr double kAboveStrips = 62.0;  // title and the labels of the marks
constexpr double kAboveStrip = 18.0;   // an algorithm's name
constexpr double kBelowStrips = 44.0;  // ticks and the axis's title

double StripHeight(const CurveData& data) {
  return static_cast<double>(kRowHeight) * static_cast<double>(data.hueNames.size());
}

double X(const NitsAxis& axis, double nits) {
  return std::floor(kLeft + axis.Share(nits) * kColumns) + 0.5;
}

/// The sample of the ramp for each column.
std::vector<std::size_t> SampleOfColumns(const CurveData& data, const NitsAxis& axis) {
  std::vector<std::size_t> samples;
  std::size_t sample = 0;
  for (int column = 0; column < kColumns; ++column) {
    const double share = (column + 0.5) / kColumns;
    while (sample + 1 < data.sourceNits.size() && axis.Share(data.sourceNits[sample]) < share) {
      ++sample;
    }
    samples.push_back(sample);
  }
  return samples;
}

Picture MakeStrip(const CurveData& data, const AlgorithmCurve& curve,
                  const std::vector<std::size_t>& samples, double top) {
  Picture picture;
  picture.width = kColumns;
  picture.height = kRowHeight * static_cast<int>(data.hueNames.size());
  picture.box = {kLeft, top, static_cast<double>(picture.width),
                 static_cast<double>(picture.height)};
  for (int y = 0; y < picture.height; ++y) {
    const auto row = static_cast<std::size_t>(y / kRowHeight) * data.sourceNits.size();
    for (const std::size_t sample : samples) picture.rgb.push_back(curve.hues.shown[row + sample]);
  }
  return picture;
}

void AddNames(Scene& scene, const CurveData& data, const AlgorithmCurve& curve, double top) {
  scene.texts.push_back(
      {.text = curve.name, .at = {kLeft, top - 5.0}, .size = 12.0, .bold = true, .color = kInk});
  for (std::size_t row = 0; row < data.hueNames.size(); ++row) {
    const double y = top + kRowHeight * static_cast<double>(row + 1) - 2.5;
    scene.texts.push_back({.text = data.hueNames[row],
                           .at = {kLeft - 6.0, y},
                           .size = 9.0,
                           .anchor = Anchor::End,
                           .color = kQuietInk});
  }
}

void AddMark(Scene& scene, double x, double labelY, double bottom, const std::string& label) {
  constexpr double kHalfLabel = 90.0;
  const double middle = std::clamp(x, kLeft + kHalfLabel, kLeft + kColumns - kHalfLabel);
  scene.texts.push_back({.text = label,
                         .at = {middle, labelY},
                         .size = 11.0,
                         .anchor = Anchor::Middle,
                         .color = kInk});
  scene.lines.push_back({{{x, labelY + 4.0}, {x, bottom}}, kIdentity, 1.0, {2.0, 3.0}, {}});
}

void AddTicks(Scene& scene, const NitsAxis& axis, double bottom) {
  for (const double decade : axis.Decades()) {
    const double x = X(axis, decade);
    scene.lines.push_back({{{x, bottom}, {x, bottom + 5.0}}, kQuietInk, 1.0, {}, {}});
    scene.texts.push_back({.text = FormatNits(decade),
                           .at = {x, bottom + 17.0},
                           .size = 11.0,
                           .anchor = Anchor::Middle,
                           .color = kQuietInk});
  }
  scene.texts.push_back({.text = "Source luminance of the largest of R, G and B (nits, at equal "
                                 "steps of PQ code value)",
                         .at = {kLeft + kColumns / 2.0, bottom + 36.0},
                         .size = 12.0,
                         .anchor = Anchor::Middle,
                         .color = kInk});
}

}  // namespace

double HueStripsHeight(const CurveData& data) {
  const auto count = static_cast<double>(data.curves.size());
  return kAboveStrips + count * (kAboveStrip + StripHeight(data)) + kBelowStrips;
}

void AddHueStrips(Scene& scene, const CurveData& data, double top, const NitsAxis& axis) {
  const double bottom = top + HueStripsHeight(data) - kBelowStrips;
  scene.texts.push_back({.text = "Colours of BT.709 primaries as mapped, shown in sRGB whose white "
                                 "is the target peak, " +
                                 FormatNits(data.targetPeakNits) + " nits",
                         .at = {kLeft, top + 14.0},
                         .size = 12.0,
                         .color = kInk});
  AddMark(scene, X(axis, data.whiteNits), top + 36.0, bottom + 3.0,
          "reference white " + FormatNits(data.whiteNits) + " nits");
  AddMark(scene, X(axis, data.sourcePeakNits), top + 50.0, bottom + 3.0,
          "source peak " + FormatNits(data.sourcePeakNits) + " nits");

  const std::vector<std::size_t> samples = SampleOfColumns(data, axis);
  double y = top + kAboveStrips;
  for (const AlgorithmCurve& curve : data.curves) {
    y += kAboveStrip;
    scene.pictures.push_back(MakeStrip(data, curve, samples, y));
    AddNames(scene, data, curve, y);
    y += StripHeight(data);
  }
  AddTicks(scene, axis, bottom);
}

}  // namespace Quillon::Cli
