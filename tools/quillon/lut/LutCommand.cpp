#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <memory>
#include <string>

#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/Commands.h"
#include "tools/quillon/lut/LutRun.h"
#include "tools/quillon/options/SharedOptions.h"

namespace {

constexpr std::array<Choice<int>, 3> kLutSizes = {{{"17", 17}, {"33", 33}, {"65", 65}}};

void AddOptions(CLI::App& lut, LutOptions& options) {
  AddChoice(lut, "--size", kLutSizes, options.size, "Points along each axis (33 when not given)");
  AddColorSpaceOptions(lut, options.map,
                       "Signal that the LUT is applied to, full-range R'G'B': bt2100-pq (when not "
                       "given) or bt2100-hlg");
  AddPeakNumberOption(lut, options.map,
                      "Peak of the source in nits (10000 for PQ and 1000 for HLG when not given)");
  AddTargetOptions(lut, options.map);
  AddAlgorithmOptions(lut, options.map);
  AddDialOptions(lut, options.map);
  lut.add_flag("--explain", options.map.explain, "Print the resolved settings");
  AddOutputOptions(lut, options.map);
}

}  // namespace

Subcommand AddLutCommand(CLI::App& app) {
  const auto options = std::make_shared<LutOptions>();
  options->map.destination = ColorSpaceOfName("srgb");
  options->map.source = ColorSpaceOfName("bt2100-pq");
  options->map.input = "the lattice";  // what messages call it

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
    RunLut(*options, std::cout, std::cerr);
    return std::vector{options->output};
  };
}
