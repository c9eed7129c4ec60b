#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <memory>
#include <string>

#include "tools/quillon/lut/LutRun.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Commands.h"
#include "tools/quillon/options/SharedOptions.h"

namespace Quillon::Cli {

namespace {

constexpr std::array<Choice<int>, 3> kLutSizes = {{{"17", 17}, {"33", 33}, {"65", 65}}};

void AddOptions(CLI::App& lut, LutOptions& options) {
  AddChoice(lut, "--size", kLutSizes, options.size, "Points along each axis (33 when not given)");
  AddColorSpaceOptions(lut, options.mapping,
                       "Signal that the LUT is applied to, full-range R'G'B': bt2100-pq (when not "
                       "given) or bt2100-hlg");
  AddPeakNumberOption(lut, options.mapping.peak,
                      "Peak of the source in nits (10000 for PQ and 1000 for HLG when not given)");
  AddTargetOptions(lut, options.mapping);
  AddAlgorithmOptions(lut, options.mapping);
  AddDialOptions(lut, options.mapping);
  lut.add_flag("--explain", options.explain, "Print the resolved settings");
  AddOutputOptions(lut, options.overwrite, options.quiet);
}

}  // namespace

Subcommand AddLutCommand(CLI::App& app) {
  const auto options = std::make_shared<LutOptions>();
  options->mapping.target.colors = ColorSpaceOfName("srgb");
  options->mapping.source.colors = ColorSpaceOfName("bt2100-pq");

  CLI::App& lut = *app.add_subcommand(
      "lut", "Write the mapping as a 3D LUT for programs that have no plug-in, with its error");
  lut.add_option("OUTPUT", options->output, ".cube file to write")->required();
  AddOptions(lut, *options);
  lut.footer(
      "Examples:\n"
      "  quillon lut --peak 1000 pq-to-srgb.cube\n"
      "  quillon lut --size 65 --from bt2100-hlg --to bt709 --algorithm bt2446a hlg-to-709.cube\n"
      "  quillon lut --to bt2100-pq --target-peak 600 --peak 4000 pq-600.cube");
  return [options] {
    SettleFit(options->mapping, false);
    RunLut(*options, std::cout, std::cerr);
    return std::vector{options->output};
  };
}

}  // namespace Quillon::Cli
