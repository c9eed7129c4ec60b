#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

#include "mapper/Mapping.h"
#include "tools/quillon/curve/CurveOptions.h"
#include "tools/quillon/curve/CurveOutputs.h"
#include "tools/quillon/curve/CurveRun.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Commands.h"
#include "tools/quillon/options/SharedOptions.h"

namespace Quillon::Cli {

using Mapper::Algorithm;

namespace {

constexpr double kDefaultPeakNits = 1000.0;

void AddAlgorithm(CurveOptions& options, Algorithm algorithm) {
  auto& all = options.algorithms;
  if (std::find(all.begin(), all.end(), algorithm) == all.end()) all.push_back(algorithm);
}

void AddOptions(CLI::App& curve, CurveOptions& options) {
  // One value each time it is given, so that outputs may follow it.
  curve
      .add_option_function<std::vector<std::string>>(
          "--algorithm",
          [&](const std::vector<std::string>& names) {
            for (const std::string& name : names) {
              AddAlgorithm(options, ParseChoice("--algorithm", Mapper::Algorithms(), name));
            }
          },
          "Tone-map algorithm to plot; may be given several times (all when not given)")
      ->allow_extra_args(false)
      ->type_name(ChoiceNames(Mapper::Algorithms()));
  AddPeakNumberOption(curve, options.mapping.peak,
                      "Peak of the source in nits (1000 when not given)");
  AddTargetOptions(curve, options.mapping);
  AddColorSpaceOptions(curve, options.mapping,
                       "Colour space that the source is in (scene-linear light when not given)");
  AddDialOptions(curve, options.mapping);
  curve.add_flag("--hue", options.hue,
                 "Add saturated colours, brightening past the source peak: a strip for each "
                 "algorithm in a plot, columns in CSV");
  AddDeviceOption(curve, options.mapping.device);
  AddOutputOptions(curve, options.overwrite, options.quiet);
}

void Summarise(std::ostream& out, const CurveOptions& options, const CurveData& data) {
  for (const auto& output : options.outputs) {
    out << output.string() << ": " << data.curves.size()
        << (data.curves.size() == 1 ? " curve" : " curves") << ", source peak "
        << data.sourcePeakNits << " nits to target peak " << data.targetPeakNits
        << " nits, reference white " << data.whiteNits << " nits\n";
  }
}

void RunCurve(CurveOptions options) {
  if (options.algorithms.empty()) {
    for (const auto& choice : Mapper::Algorithms()) options.algorithms.push_back(choice.value);
  }
  CheckCurveOptions(options);
  SettleFit(options.mapping, true);
  PeakOptions& peak = options.mapping.peak;
  if (peak.from == PeakSource::Default) peak = {PeakSource::Number, kDefaultPeakNits};
  const CurveData data = RunCurves(options, std::cerr);
  WriteCurves(options.outputs, data, options.overwrite);
  if (!options.quiet) Summarise(std::cout, options, data);
}

}  // namespace

Subcommand AddCurveCommand(CLI::App& app) {
  const auto options = std::make_shared<CurveOptions>();
  options->mapping.target.colors = ColorSpaceOfName("srgb");

  CLI::App& curve = *app.add_subcommand(
      "curve", "Plot how the tone-map algorithms map a grey ramp, in nits and in PQ code values");
  curve
      .add_option("OUTPUT", options->outputs, "SVG, PNG or CSV file to write; several may be given")
      ->required();
  AddOptions(curve, *options);
  curve.footer(
      "Examples:\n"
      "  quillon curve curves.svg\n"
      "  quillon curve --peak 4000 --algorithm hue --algorithm bt2446a curves.png curves.csv\n"
      "  quillon curve --to bt2100-pq --target-peak 600 --peak 4000 --hue curves.svg");
  return [options] {
    RunCurve(*options);
    return options->outputs;
  };
}

}  // namespace Quillon::Cli
