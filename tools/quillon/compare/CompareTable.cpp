#include "tools/quillon/compare/CompareTable.h"

#include <iomanip>
#include <sstream>
#include <string>

#include "tools/quillon/compare/CompareOptions.h"

namespace Quillon::Cli {

namespace {

std::ostream& Label(std::ostream& out, const std::string& label) {
  return out << std::left << std::setw(24) << label;
}

std::string Fixed(double value, int digits) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(digits) << value;
  return text.str();
}

std::string CountOf(const PixelMarks& marks, PixelMark mark) {
  const auto count = marks.Count(mark);
  const double percent =
      100.0 * static_cast<double>(count) / static_cast<double>(marks.marks.size());
  return std::to_string(count) + " (" + Fixed(percent, 3) + " %)";
}

void PrintMarks(std::ostream& out, const std::string& label, const std::string& a,
                const std::string& b) {
  Label(out, label) << "A " << std::setw(22) << a << "B " << b << '\n';
}

std::string PsnrOf(const SignalError& error) {
  const auto psnr = error.PsnrDb();
  return psnr.has_value() ? Fixed(*psnr, 2) + " dB" : "infinite: there is no difference";
}

void PrintDeltaE(std::ostream& out, const DeltaEFigures& figures) {
  Label(out, "delta-E ITP") << "mean " << Fixed(figures.mean, 4) << ", median "
                            << Fixed(figures.median, 4) << ", 95 % "
                            << Fixed(figures.percentile95, 4) << ", 99 % "
                            << Fixed(figures.percentile99, 4) << '\n';
  Label(out, "  largest") << Fixed(figures.max, 4) << " at x " << figures.maxX << ", y "
                          << figures.maxY << '\n';
}

}  // namespace

void PrintComparison(std::ostream& out, const Comparison& comparison,
                     const CompareSettings& settings) {
  const auto clipped = [](const PixelMarks& marks) {
    return marks.hasFullScale ? CountOf(marks, kClipped) : "no full scale";
  };
  const PixelMarks& a = comparison.marksA;
  const PixelMarks& b = comparison.marksB;
  Label(out, "pixels compared") << comparison.comparedPixels << " of " << comparison.Pixels()
                                << " (" << comparison.width << 'x' << comparison.height
                                << "), white " << settings.white << " nits\n";
  if (comparison.deltaEFigures) PrintDeltaE(out, *comparison.deltaEFigures);
  if (comparison.pqError) {
    Label(out, "PSNR, PQ of BT.2020") << PsnrOf(*comparison.pqError) << '\n';
  }
  if (comparison.ownError) Label(out, "PSNR, own signal") << PsnrOf(*comparison.ownError) << '\n';
  PrintMarks(out, "clipped", clipped(a), clipped(b));
  PrintMarks(out, "out of " + std::string(ComparedGamutName(settings.gamutPrimaries)),
             CountOf(a, kOutOfGamut), CountOf(b, kOutOfGamut));
  PrintMarks(out, "not finite", CountOf(a, kNotFinite), CountOf(b, kNotFinite));
}

}  // namespace Quillon::Cli
