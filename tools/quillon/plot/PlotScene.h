#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Quillon::Cli {

/// A drawing as a list of what is to be seen, in pixels from the top left corner. Drawn in the
/// order pictures, lines, dots, texts, each over the ones before.

struct Color {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
  friend bool operator==(const Color&, const Color&) = default;
};

struct Point {
  double x = 0.0;
  double y = 0.0;
};

struct Box {
  double x = 0.0;
  double y = 0.0;
  double width = 0.0;
  double height = 0.0;

  double Right() const { return x + width; }
  double Bottom() const { return y + height; }
};

struct Line {
  std::vector<Point> points;
  Color color;
  double width = 1.0;
  std::vector<double> dashes;  ///< lengths on and off; empty: solid
  std::optional<Box> clip;
};

struct Dot {
  Point center;
  double radius = 1.0;
  Color color;
};

enum class Anchor { Start, Middle, End };

struct Text {
  std::string text;
  Point at;  ///< on the baseline
  double size = 12.0;
  Anchor anchor = Anchor::Start;
  bool upright = false;  ///< turned to read from below to above
  bool bold = false;
  bool rimmed = false;  ///< with a white rim, to be read over lines
  Color color = {};
};

/// An opaque picture, its samples not blended where it is scaled.
struct Picture {
  Box box;
  int width = 0;
  int height = 0;
  std::vector<std::array<std::uint8_t, 3>> rgb;  ///< rows from the top
};

/// On white.
struct Scene {
  int width = 0;
  int height = 0;
  std::string title;
  std::vector<Picture> pictures;
  std::vector<Line> lines;
  std::vector<Dot> dots;
  std::vector<Text> texts;
};

}  // namespace Quillon::Cli
