#include "tools/quillon/curve/CurveCsv.h"

#include <array>
#include <charconv>
#include <sstream>
#include <string_view>

#include "curves/St2084.h"

namespace Quillon::Cli {

namespace {

constexpr std::array<std::string_view, 3> kComponents = {"r", "g", "b"};

void AppendNumber(std::string& text, double value) {
  constexpr int kFloatDigits = 9;
  std::array<char, 32> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                 std::chars_format::general, kFloatDigits)
                       .ptr;
  text.append(digits.data(), end);
}

/// Nits and their PQ code value.
void AppendLuminance(std::string& text, double nits) {
  AppendNumber(text, nits);
  text += ',';
  AppendNumber(text, EncodeSt2084(nits));
}

std::string Comments(const CurveData& data) {
  std::ostringstream out;
  out << "# quillon curve " QUILLON_VERSION ": a grey ramp as the tone-map algorithms map it\n"
      << "# luminances in nits (cd/m2), PQ code values (SMPTE ST 2084) from 0 to 1\n"
      << "# source peak " << data.sourcePeakNits << " nits, target peak " << data.targetPeakNits
      << " nits, reference white " << data.whiteNits << " nits\n";
  if (!data.hueNames.empty()) {
    out << "# ALGORITHM_COLOUR_r_nits and so on: linear light of the destination's red, green and\n"
        << "# blue; the colour has BT.709 primaries and its largest component at source_nits\n";
  }
  for (const AlgorithmCurve& curve : data.curves) {
    out << "#\n# --algorithm " << curve.name << '\n';
    if (curve.knee) {
      out << "#   knee              at a source of " << curve.knee->source << " nits, result "
          << curve.knee->result << " nits\n";
    }
    std::istringstream lines(curve.explanation);
    for (std::string line; std::getline(lines, line);) out << "#   " << line << '\n';
  }
  return out.str();
}

std::string ColumnNames(const CurveData& data) {
  std::ostringstream out;
  out << "source_nits,source_pq";
  for (const AlgorithmCurve& curve : data.curves) {
    out << ',' << curve.name << "_nits," << curve.name << "_pq";
  }
  for (const AlgorithmCurve& curve : data.curves) {
    for (const std::string& hue : data.hueNames) {
      for (const std::string_view component : kComponents) {
        out << ',' << curve.name << '_' << hue << '_' << component << "_nits";
      }
    }
  }
  out << '\n';
  return out.str();
}

void AppendRow(std::string& text, const CurveData& data, std::size_t sample) {
  AppendLuminance(text, data.sourceNits[sample]);
  for (const AlgorithmCurve& curve : data.curves) {
    text += ',';
    AppendLuminance(text, curve.resultNits[sample]);
  }
  for (const AlgorithmCurve& curve : data.curves) {
    for (std::size_t hue = 0; hue < data.hueNames.size(); ++hue) {
      for (const double nits : curve.hues.nits[hue * data.sourceNits.size() + sample]) {
        text += ',';
        AppendNumber(text, nits);
      }
    }
  }
  text += '\n';
}

}  // namespace

std::string FormatCurveCsv(const CurveData& data) {
  std::string text = Comments(data) + ColumnNames(data);
  for (std::size_t sample = 0; sample < data.sourceNits.size(); ++sample) {
    AppendRow(text, data, sample);
  }
  return text;
}

}  // namespace Quillon::Cli
