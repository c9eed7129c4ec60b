#include "tools/quillon/lut/CubeFile.h"

#include <array>
#include <charconv>
#include <sstream>

namespace Quillon::Cli {

namespace {

void AppendNumber(std::string& text, float value) {
  // Fixed, since some readers know no exponents; nine places keep the darkest results apart.
  constexpr int kPlaces = 9;
  std::array<char, 16> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                 std::chars_format::fixed, kPlaces)
                       .ptr;
  text.append(digits.data(), end);
}

}  // namespace

std::string FormatCube(const LutLattice& lattice, const std::string& title,
                       const std::string& comments) {
  std::string text = "TITLE \"" + title + "\"\n";
  std::istringstream lines(comments);
  for (std::string line; std::getline(lines, line);) text += "# " + line + '\n';
  text += "LUT_3D_SIZE " + std::to_string(lattice.size) +
          "\nDOMAIN_MIN 0.0 0.0 0.0\nDOMAIN_MAX 1.0 1.0 1.0\n";
  for (const Signal& result : lattice.results) {
    AppendNumber(text, result[0]);
    text += ' ';
    AppendNumber(text, result[1]);
    text += ' ';
    AppendNumber(text, result[2]);
    text += '\n';
  }
  return text;
}

}  // namespace Quillon::Cli
