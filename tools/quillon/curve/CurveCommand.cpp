#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/Commands.h"
#include "tools/quillon/curve/CurveOptions.h"
#include "tools/quillon/curve/CurveOutputs.h"
#include "tools/quillon/curve/CurveRun.h"
#include "tools/quillon/options/AlgorithmNames.h"
#include "tools/quillon/options/SharedOptions.h"

using orvmediatypes::color::ToneMapAlgorithmType;

namespace {

constexpr double kDefaultPeakNits = 1000.0;

void AddAlgorithm(CurveOptions& options, ToneMapAlgorithmType algorithm) {
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
              AddAlgorithm(options, ParseChoice("--algorithm", kAlgorithms, name));
            }
          },
          "Tone-map algorithm to plot; may be given several times (all when not given)")
      ->allow_extra_args(false)
      ->type_name(ChoiceNames(kAlgorithms));
  AddPeakNumberOption(curve, options.map, "Peak of the source in nits (1000 when not given)");
  AddTargetOptions(curve, options.map);
  AddColorSpaceOptions(curve, options.map,
                       "Colour space that the source is in (scene-linear light when not given)");
  AddDialOptions(curve, options.map);
  curve.add_flag("--hue", options.hue,
                 "Add saturated colours, brightening past the source peak: a strip for each "
                 "algorithm in a plot, columns in CSV");
  AddDeviceOption(curve, options.map);
  AddOutputOptions(curve, options.map);
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
    for (const auto& choice : kAlgorithms) options.algorithms.push_back(choice.value);
  }
  CheckCurveOptions(options);
  if (options.map.peakSource == PeakSource::Default) {
    options.map.peakSource = PeakSource::Number;
    options.map.peakNits = kDefaultPeakNits;
  }
  const CurveData data = RunCurves(options, std::cerr);
  WriteCurves(options.outputs, data, options.map.overwrite);
  if (!options.map.quiet) Summarise(std::cout, options, data);
}

}  // namespace

Subcommand AddCurveCommand(CLI::App& app) {
  const auto options = std::make_shared<CurveOptions>();
  options->map.destination = ColorSpaceOfName("srgb");
  options->map.input = "the ramp";  // what messages call it

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
