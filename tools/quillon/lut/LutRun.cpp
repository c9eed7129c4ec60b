#include "tools/quillon/lut/LutRun.h"

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/ApplyPlan.h"
#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/MapPlan.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/lut/CubeFile.h"
#include "tools/quillon/lut/LutError.h"
#include "tools/quillon/lut/LutSignals.h"
#include "tools/quillon/map/Explain.h"
#include "tools/quillon/options/AlgorithmNames.h"
#include "tools/quillon/process/ExitCodes.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

ColorDescription SourceOf(const MapOptions& options) {
  return options.source.value_or(ColorSpaceOfName("bt2100-pq"));
}

bool IsShaper(const MapOptions& options) {
  const std::uint8_t transfer = SourceOf(options).transfer;
  return transfer == H273::kTransferPQ || transfer == H273::kTransferHLG;
}

void CheckLutOptions(const LutOptions& options) {
  CheckMapOptions(options.map);
  if (!IsShaper(options.map)) {
    throw CommandError(ExitCode::Usage,
                       "--from of a LUT is a PQ or HLG signal, whose steps suit the eye: choose "
                       "bt2100-pq or bt2100-hlg");
  }
  if (options.map.destination.transfer == H273::kTransferLinear) {
    throw CommandError(ExitCode::Usage,
                       "--to of a LUT is a signal from 0 to 1, which linear light is not; choose "
                       "one of " +
                           ColorSpaceNames());
  }
  if (LowerCaseExtension(options.output) != ".cube") {
    throw StillError(StillErrorKind::NotSupported, options.output,
                     "its extension names no format of a LUT", "choose .cube");
  }
  CheckTargetFile(options.output, options.map.overwrite);
}

MapPlan PlanFor(const std::vector<Signal>& signals, const MapOptions& options) {
  Still still;
  still.frame = FrameOfSignals(signals, ColorSpace(SourceOf(options)));
  return PlanMap(options, still);
}

/// Within the range of a signal; what is no number becomes 0.
float Clamped(float value) {
  if (!(value > 0.0F)) return 0.0F;
  return value < 1.0F ? value : 1.0F;
}

std::vector<Signal> ApplyTo(const MapPlan& plan, std::size_t count) {
  std::vector<Signal> results = SignalsOfFrame(ApplyPlan(plan, "the lattice"), count);
  for (Signal& result : results) {
    for (float& component : result) component = Clamped(component);
  }
  return results;
}

std::string Title(const MapOptions& options) {
  return DescribeColorSpace(SourceOf(options)) + " to " + DescribeColorSpace(options.destination);
}

std::string Comments(const LutOptions& options, const MapPlan& plan, const LutError& error) {
  const MapOptions& map = options.map;
  const bool pq = SourceOf(map).transfer == H273::kTransferPQ;
  std::ostringstream out;
  out << "quillon lut " QUILLON_VERSION "\n"
      << "shaper: " << (pq ? "PQ" : "HLG") << " (ITU-R BT.2100)\n"
      << "input: R'G'B' signal of " << DescribeColorSpace(SourceOf(map))
      << ", full range, 0 to 1 in this domain\n"
      << "output: R'G'B' signal of " << DescribeColorSpace(map.destination)
      << ", full range, clamped to 0 to 1\n"
      << "--algorithm " << AlgorithmName(map.algorithm) << '\n';
  ExplainPlan(out, plan);
  DescribeLutError(out, error, "");
  return out.str();
}

void Summarise(std::ostream& out, const LutOptions& options, const MapPlan& plan,
               const LutError& error) {
  out << options.output.string() << ": " << options.size << 'x' << options.size << 'x'
      << options.size << " from " << DescribeColorSpace(plan.taggedSource) << ", peak "
      << plan.sourcePeakNits << " nits (" << plan.peakOrigin << ") to "
      << DescribeColorSpace(options.map.destination) << ", peak " << plan.destinationPeakNits
      << " nits, clamped to 0 to 1\n";
  DescribeLutError(out, error, "");
}

void WriteText(const std::filesystem::path& path, const std::string& text, bool overwrite) {
  WriteTargetFile(path, std::vector<std::uint8_t>(text.begin(), text.end()), overwrite);
}

}  // namespace

void RunLut(const LutOptions& options, std::ostream& out, std::ostream& notes) {
  CheckLutOptions(options);
  const std::vector<Signal> onLattice = LatticeSignals(options.size);
  const MapPlan plan = PlanFor(onLattice, options.map);
  if (options.map.explain) ExplainPlan(out, plan);
  if (!options.map.quiet) NoteOptionsWithoutEffect(notes, options.map, plan);
  const LutLattice lattice{options.size, ApplyTo(plan, onLattice.size())};

  const std::vector<Signal> offLattice = SignalsOffLattice(options.size);
  const std::vector<Signal> engineResults =
      ApplyTo(PlanFor(offLattice, options.map), offLattice.size());
  const LutError error =
      MeasureLutError(lattice, offLattice, engineResults,
                      plan.settings.toneMapSettings.destinationColorSpace, options.map.white);

  WriteText(options.output, FormatCube(lattice, Title(options.map), Comments(options, plan, error)),
            options.map.overwrite);
  if (!options.map.quiet) Summarise(out, options, plan, error);
}
