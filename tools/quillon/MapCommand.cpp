#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <optional>

#include <oneapi/tbb/global_control.h>

#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/Commands.h"
#include "tools/quillon/ExitCodes.h"
#include "tools/quillon/MapOptions.h"
#include "tools/quillon/MapStill.h"
#include "tools/quillon/SharedOptions.h"

namespace {

void ParsePeak(const std::string& text, MapOptions& options) {
  if (text == "metadata") {
    options.peakSource = PeakSource::Metadata;
    return;
  }
  if (text == "measure") {
    options.peakSource = PeakSource::Measure;
    return;
  }
  if (!ParseNits(text, options.peakNits)) {
    throw CLI::ValidationError(
        "--peak",
        "'" + text + "' is neither a number of nits above 0, nor 'metadata', nor 'measure'");
  }
  options.peakSource = PeakSource::Number;
}

void AddLuminanceOptions(CLI::App& map, MapOptions& options) {
  map.add_option_function<std::string>(
         "--peak", [&](const std::string& text) { ParsePeak(text, options); },
         "Peak of the source in nits, or where to take it from. When not given: the file's "
         "metadata (MaxCLL, else the mastering display); without any, measured for scene-linear "
         "pictures, else 10000 for PQ and 1000 for HLG")
      ->type_name("NITS|metadata|measure");
  AddTargetOptions(map, options);
}

void AddRunOptions(CLI::App& map, MapOptions& options) {
  map.add_option("--depth", options.depth,
                 "Bits of a component in the output. PNG: 8 or 16; AVIF: 8, 10 or 12; EXR: 16 "
                 "(half) or 32 (float)")
      ->type_name("BITS");
  AddDeviceOption(map, options);
  map.add_option("--threads", options.threads, "Threads to use (all processors when not given)")
      ->check(CLI::Range(1, 1024))
      ->type_name("COUNT");
  map.add_flag("--explain", options.explain, "Print the resolved settings");
  AddOutputOptions(map, options);
}

void RunMap(const MapOptions& options) {
  CheckMapOptions(options);
  std::optional<tbb::global_control> limit;
  if (options.threads.has_value()) {
    limit.emplace(tbb::global_control::max_allowed_parallelism, *options.threads);
  }
  MapStill(options, std::cout, std::cerr);
}

}  // namespace

Subcommand AddMapCommand(CLI::App& app) {
  const auto options = std::make_shared<MapOptions>();
  options->destination = ColorSpaceOfName("srgb");

  CLI::App& map = *app.add_subcommand("map", "Map an HDR picture to a lower peak or smaller gamut");
  map.add_option("INPUT", options->input, "EXR, Radiance HDR, PNG or AVIF picture")->required();
  map.add_option("OUTPUT", options->output, "PNG, EXR or AVIF picture to write")->required();
  AddColorSpaceOptions(map, *options, "Colour space of the input, in place of what its tags say");
  AddLuminanceOptions(map, *options);
  AddAlgorithmOptions(map, *options);
  AddDialOptions(map, *options);
  AddRunOptions(map, *options);
  map.footer(
      "Examples:\n"
      "  quillon map photo.exr photo.png\n"
      "  quillon map --to p3-d65 --algorithm hue --knee 0.4 photo.avif photo.png\n"
      "  quillon map --to bt2100-pq --target-peak 600 master.avif display.avif");
  return [options] { RunMap(*options); };
}
