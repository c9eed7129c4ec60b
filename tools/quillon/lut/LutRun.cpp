#include "tools/quillon/lut/LutRun.h"

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "mapper/Frames.h"
#include "mapper/Mapping.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/lut/CubeFile.h"
#include "tools/quillon/lut/LutError.h"
#include "tools/quillon/lut/LutSignals.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Explain.h"
#include "tools/quillon/picture/MapPicture.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

using Mapper::Decisions;
using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

constexpr const char* kLattice = "the lattice";  // what messages call it

ColorDescription SourceOf(const MappingOptions& options) {
  return options.source.colors.value_or(ColorSpaceOfName("bt2100-pq"));
}

bool IsShaper(const MappingOptions& options) {
  const std::uint8_t transfer = SourceOf(options).transfer;
  return transfer == RefHost::kTransferPQ || transfer == RefHost::kTransferHLG;
}

void CheckLutOptions(const LutOptions& options) {
  CheckMappingOptions(options.mapping);
  CheckExplainIsSeen(options.explain, options.quiet);
  if (!IsShaper(options.mapping)) {
    throw CommandError(ExitCode::Usage,
                       "--from of a LUT is a PQ or HLG signal, whose steps suit the eye: choose "
                       "bt2100-pq or bt2100-hlg");
  }
  if (options.mapping.target.colors.transfer == RefHost::kTransferLinear) {
    throw CommandError(ExitCode::Usage,
                       "--to of a LUT is a signal from 0 to 1, which linear light is not; choose "
                       "one such as srgb");
  }
  if (LowerCaseExtension(options.output) != ".cube") {
    throw StillError(StillErrorKind::NotSupported, options.output,
                     "its extension names no format of a LUT", "choose .cube");
  }
  CheckTargetFile(options.output, options.overwrite);
}

PlannedPicture PlanFor(const std::vector<Signal>& signals, MappingOptions options) {
  // There is no picture to measure.
  if (options.peak.from == PeakSource::Default) options.peak.from = PeakSource::Metadata;
  return PlanPicture(options, kLattice, FrameOfSignals(signals, ColorSpace(SourceOf(options))));
}

/// Within the range of a signal; what is no number becomes 0.
float Clamped(float value) {
  if (!(value > 0.0F)) return 0.0F;
  return value < 1.0F ? value : 1.0F;
}

std::vector<Signal> ApplyTo(const PlannedPicture& picture, std::size_t count) {
  std::vector<Signal> results = SignalsOfFrame(MapPicture(picture, kLattice), count);
  for (Signal& result : results) {
    for (float& component : result) component = Clamped(component);
  }
  return results;
}

std::string Title(const MappingOptions& options) {
  return DescribeColorSpace(SourceOf(options)) + " to " + DescribeColorSpace(options.target.colors);
}

std::string Comments(const LutOptions& options, const Decisions& decisions, const LutError& error) {
  const MappingOptions& map = options.mapping;
  const bool pq = SourceOf(map).transfer == RefHost::kTransferPQ;
  std::ostringstream out;
  out << "quillon lut " QUILLON_VERSION "\n"
      << "shaper: " << (pq ? "PQ" : "HLG") << " (ITU-R BT.2100)\n"
      << "input: R'G'B' signal of " << DescribeColorSpace(SourceOf(map))
      << ", full range, 0 to 1 in this domain\n"
      << "output: R'G'B' signal of " << DescribeColorSpace(map.target.colors)
      << ", full range, clamped to 0 to 1\n"
      << "--algorithm " << Mapper::AlgorithmName(map.settings.algorithm) << '\n';
  Explain(out, decisions);
  DescribeLutError(out, error, "");
  return out.str();
}

void Summarise(std::ostream& out, const LutOptions& options, const Decisions& decisions,
               const LutError& error) {
  out << options.output.string() << ": " << options.size << 'x' << options.size << 'x'
      << options.size << " from " << DescribeColorSpace(decisions.source) << ", peak "
      << decisions.sourcePeak.nits << " nits (" << decisions.sourcePeak.origin << ") to "
      << DescribeColorSpace(options.mapping.target.colors) << ", peak "
      << decisions.destinationPeakNits << " nits, clamped to 0 to 1\n";
  DescribeLutError(out, error, "");
}

void WriteText(const std::filesystem::path& path, const std::string& text, bool overwrite) {
  WriteTargetFile(path, std::vector<std::uint8_t>(text.begin(), text.end()), overwrite);
}

}  // namespace

void RunLut(const LutOptions& options, std::ostream& out, std::ostream& notes) {
  CheckLutOptions(options);
  const std::vector<Signal> onLattice = LatticeSignals(options.size);
  const PlannedPicture planned = PlanFor(onLattice, options.mapping);
  const Decisions decisions = planned.plan.Decide();
  if (options.explain) Explain(out, decisions);
  if (!options.quiet) NoteOptionsWithoutEffect(notes, options.mapping, decisions);
  const LutLattice lattice{options.size, ApplyTo(planned, onLattice.size())};

  const std::vector<Signal> offLattice = SignalsOffLattice(options.size);
  const std::vector<Signal> engineResults =
      ApplyTo(PlanFor(offLattice, options.mapping), offLattice.size());
  const LutError error =
      MeasureLutError(lattice, offLattice, engineResults,
                      Mapper::DestinationColorSpace(planned.plan), options.mapping.settings.white);

  WriteText(options.output,
            FormatCube(lattice, Title(options.mapping), Comments(options, decisions, error)),
            options.overwrite);
  if (!options.quiet) Summarise(out, options, decisions, error);
}

}  // namespace Quillon::Cli
