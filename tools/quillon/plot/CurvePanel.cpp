#include "tools/quillon/plot/CurvePanel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/quillon/plot/CurveStyle.h"

namespace Quillon::Cli {

namespace {

constexpr double kTickSize = 11.0;
constexpr double kTitleSize = 12.0;
constexpr double kLabelSize = 11.0;
constexpr double kLabelRoom = 170.0;  // a label of a peak or of white, lengthwise

/// The middle of a pixel, for a line one pixel wide to be sharp.
double Sharp(double position) { return std::floor(position) + 0.5; }

class Panel {
 public:
  Panel(Scene& scene, const CurveData& data, const Box& box, const NitsAxis& axis)
      : scene_(scene), data_(data), box_(box), axis_(axis) {}

  void AddGrid();
  void AddMarks();
  void AddCurves();
  void AddTitles();

 private:
  double X(double share) const { return box_.x + share * box_.width; }
  double Y(double share) const { return box_.Bottom() - share * box_.height; }
  Point Place(double source, double result) const {
    return {X(axis_.Share(source)), Y(axis_.Share(result))};
  }

  void AddVertical(double share, const Color& color, const std::vector<double>& dashes = {});
  void AddHorizontal(double share, const Color& color, const std::vector<double>& dashes = {});
  void AddTick(double share, const std::string& label);
  void AddLogGrid();
  void AddPQGrid();
  void AddNitsAbove();
  void AddSourceLabel(double nits, const std::string& label, bool left);
  void AddTargetLabel();
  void AddCurve(const AlgorithmCurve& curve);
  void AddKnee(const Point& knee, const Color& color);

  Scene& scene_;
  const CurveData& data_;
  Box box_;
  const NitsAxis& axis_;
};

void Panel::AddVertical(double share, const Color& color, const std::vector<double>& dashes) {
  const double x = Sharp(X(share));
  scene_.lines.push_back({{{x, box_.Bottom()}, {x, box_.y}}, color, 1.0, dashes, {}});
}

void Panel::AddHorizontal(double share, const Color& color, const std::vector<double>& dashes) {
  const double y = Sharp(Y(share));
  scene_.lines.push_back({{{box_.x, y}, {box_.Right(), y}}, color, 1.0, dashes, {}});
}

void Panel::AddTick(double share, const std::string& label) {
  scene_.texts.push_back({.text = label,
                          .at = {X(share), box_.Bottom() + 16.0},
                          .size = kTickSize,
                          .anchor = Anchor::Middle,
                          .color = kQuietInk});
  scene_.texts.push_back({.text = label,
                          .at = {box_.x - 6.0, Y(share) + 4.0},
                          .size = kTickSize,
                          .anchor = Anchor::End,
                          .color = kQuietInk});
}

void Panel::AddLogGrid() {
  const std::vector<double> decades = axis_.Decades();
  for (const double decade : decades) {
    for (int digit = 2; digit < 10 && digit * decade < axis_.Highest(); ++digit) {
      AddVertical(axis_.Share(digit * decade), kFaintGrid);
      AddHorizontal(axis_.Share(digit * decade), kFaintGrid);
    }
  }
  for (const double decade : decades) {
    AddVertical(axis_.Share(decade), kGrid);
    AddHorizontal(axis_.Share(decade), kGrid);
    AddTick(axis_.Share(decade), FormatNits(decade));
  }
}

void Panel::AddPQGrid() {
  constexpr double kFullScaleNits = 10000.0;
  const double fullScale = axis_.Share(kFullScaleNits);
  for (int tenth = 0; tenth * fullScale / 10.0 <= 1.0; ++tenth) {
    const double share = tenth * fullScale / 10.0;
    AddVertical(share, kGrid);
    AddHorizontal(share, kGrid);
    char label[16];
    std::snprintf(label, sizeof label, "%.1f", tenth / 10.0);
    AddTick(share, label);
  }
}

/// The luminances of the source's code values.
void Panel::AddNitsAbove() {
  for (const double decade : axis_.Decades()) {
    const double x = Sharp(X(axis_.Share(decade)));
    scene_.lines.push_back({{{x, box_.y}, {x, box_.y - 4.0}}, kQuietInk, 1.0, {}, {}});
    scene_.texts.push_back({.text = FormatNits(decade),
                            .at = {x, box_.y - 7.0},
                            .size = kTickSize,
                            .anchor = Anchor::Middle,
                            .color = kQuietInk});
  }
  scene_.texts.push_back({.text = "Source luminance (nits)",
                          .at = {X(0.5), box_.y - 22.0},
                          .size = kTickSize,
                          .anchor = Anchor::Middle,
                          .color = kQuietInk});
}

void Panel::AddGrid() {
  if (axis_.Kind() == NitsAxis::Scale::Log) {
    AddLogGrid();
  } else {
    AddPQGrid();
    AddNitsAbove();
  }
  scene_.lines.push_back(
      {{{box_.x, box_.Bottom()}, {box_.Right(), box_.y}}, kIdentity, 1.0, {}, {}});
  const double left = Sharp(box_.x);
  const double right = Sharp(box_.Right());
  const double top = Sharp(box_.y);
  const double bottom = Sharp(box_.Bottom());
  scene_.lines.push_back({{{left, top}, {right, top}, {right, bottom}, {left, bottom}, {left, top}},
                          kQuietInk,
                          1.0,
                          {},
                          {}});
}

/// Turned upright beside its line, at the end where the curves are not.
void Panel::AddSourceLabel(double nits, const std::string& label, bool left) {
  const double share = axis_.Share(nits);
  const bool below = share * box_.height > kLabelRoom;
  scene_.texts.push_back(
      {.text = label,
       .at = {X(share) + (left ? -5.0 : 13.0), below ? box_.Bottom() - 6.0 : box_.y + 6.0},
       .size = kLabelSize,
       .anchor = below ? Anchor::Start : Anchor::End,
       .upright = true,
       .color = kInk});
}

void Panel::AddTargetLabel() {
  const double share = axis_.Share(data_.targetPeakNits);
  const bool atLeft = share * box_.height > kLabelRoom;
  const bool above = (1.0 - share) * box_.height > 2.0 * kLabelSize;
  scene_.texts.push_back(
      {.text = "target peak " + FormatNits(data_.targetPeakNits) + " nits",
       .at = {atLeft ? box_.x + 6.0 : box_.Right() - 6.0, Y(share) + (above ? -5.0 : 13.0)},
       .size = kLabelSize,
       .anchor = atLeft ? Anchor::Start : Anchor::End,
       .color = kInk});
}

void Panel::AddMarks() {
  const std::vector<double> dashes = {2.0, 3.0};
  AddVertical(axis_.Share(data_.whiteNits), kInk, dashes);
  AddVertical(axis_.Share(data_.sourcePeakNits), kInk, dashes);
  AddHorizontal(axis_.Share(data_.targetPeakNits), kInk, dashes);
  const bool whiteIsLower = data_.whiteNits <= data_.sourcePeakNits;
  AddSourceLabel(data_.whiteNits, "reference white " + FormatNits(data_.whiteNits) + " nits",
                 whiteIsLower);
  AddSourceLabel(data_.sourcePeakNits, "source peak " + FormatNits(data_.sourcePeakNits) + " nits",
                 !whiteIsLower);
  AddTargetLabel();
}

void Panel::AddCurve(const AlgorithmCurve& curve) {
  constexpr double kStep = 0.7;  // nothing nearer is told apart
  const CurveStyle style = StyleOf(curve.name);
  Line line{{}, style.color, 2.0, style.dashes, box_};
  for (std::size_t i = 0; i < data_.sourceNits.size(); ++i) {
    const Point point = Place(data_.sourceNits[i], curve.resultNits[i]);
    if (!std::isfinite(point.y)) continue;
    const bool last = i + 1 == data_.sourceNits.size();
    if (last || line.points.empty() || std::abs(point.x - line.points.back().x) > kStep ||
        std::abs(point.y - line.points.back().y) > kStep) {
      line.points.push_back(point);
    }
  }
  scene_.lines.push_back(std::move(line));
  if (curve.knee) AddKnee(Place(curve.knee->source, curve.knee->result), style.color);
}

/// Knees that coincide are drawn the smaller, the later, so that each is seen.
void Panel::AddKnee(const Point& knee, const Color& color) {
  if (knee.x < box_.x || knee.x > box_.Right() || knee.y < box_.y || knee.y > box_.Bottom()) return;
  double radius = 5.5;
  for (const Dot& dot : scene_.dots) {
    if (std::hypot(dot.center.x - knee.x, dot.center.y - knee.y) < radius) {
      radius = std::max(1.5, radius - 2.0);
    }
  }
  scene_.dots.push_back({knee, radius, color});
}

void Panel::AddCurves() {
  for (const bool dashed : {false, true}) {
    for (const AlgorithmCurve& curve : data_.curves) {
      if (StyleOf(curve.name).dashes.empty() != dashed) AddCurve(curve);
    }
  }
}

void Panel::AddTitles() {
  const bool log = axis_.Kind() == NitsAxis::Scale::Log;
  scene_.texts.push_back({.text = log ? "Source luminance (nits)" : "Source PQ code value",
                          .at = {X(0.5), box_.Bottom() + 36.0},
                          .size = kTitleSize,
                          .anchor = Anchor::Middle,
                          .color = kInk});
  scene_.texts.push_back({.text = log ? "Result luminance (nits)" : "Result PQ code value",
                          .at = {box_.x - 48.0, Y(0.5)},
                          .size = kTitleSize,
                          .anchor = Anchor::Middle,
                          .upright = true,
                          .color = kInk});
}

}  // namespace

void AddCurvePanel(Scene& scene, const CurveData& data, const Box& box, const NitsAxis& axis) {
  Panel panel(scene, data, box, axis);
  panel.AddGrid();
  panel.AddMarks();
  panel.AddCurves();
  panel.AddTitles();
}

}  // namespace Quillon::Cli
