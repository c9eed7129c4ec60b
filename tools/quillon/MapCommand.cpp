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
#include "tools/quillon/clip/AddClipOptions.h"
#include "tools/quillon/clip/MapClip.h"
#include "tools/quillon/clip/PictureSource.h"

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
  if (text == "scenes") {
    options.peakSource = PeakSource::Scenes;
    return;
  }
  if (!ParseNits(text, options.peakNits)) {
    throw CLI::ValidationError(
        "--peak",
        "'" + text +
            "' is neither a number of nits above 0, nor 'metadata', 'measure' or 'scenes'");
  }
  options.peakSource = PeakSource::Number;
}

void AddLuminanceOptions(CLI::App& map, MapOptions& options) {
  map.add_option_function<std::string>(
         "--peak", [&](const std::string& text) { ParsePeak(text, options); },
         "Peak of the source in nits, or where to take it from. When not given: the file's "
         "metadata (MaxCLL, else the mastering display); without any, measured for scene-linear "
         "pictures, else 10000 for PQ and 1000 for HLG. measure: in a pass over the picture or "
         "clip; scenes: the same, for each scene of a clip")
      ->type_name("NITS|metadata|measure|scenes");
  AddTargetOptions(map, options);
}

void AddRunOptions(CLI::App& map, MapOptions& options) {
  map.add_option("--depth", options.depth,
                 "Bits of a component in the output. PNG: 8 or 16; AVIF: 8, 10 or 12; EXR: 16 "
                 "(half) or 32 (float); clips: what the encoder takes")
      ->type_name("BITS");
  AddDeviceOption(map, options);
  map.add_option("--threads", options.threads, "Threads to use (all processors when not given)")
      ->check(CLI::Range(1, 1024))
      ->type_name("COUNT");
  map.add_flag("--explain", options.explain, "Print the resolved settings");
  AddOutputOptions(map, options);
}

void RunMap(MapOptions options, bool destinationGiven) {
  const bool isClip = IsClipOrSequence(options.input);
  if (!destinationGiven) options.destination = ColorSpaceOfName(isClip ? "bt709" : "srgb");
  CheckMapOptions(options);
  std::optional<tbb::global_control> limit;
  if (options.threads.has_value()) {
    limit.emplace(tbb::global_control::max_allowed_parallelism, *options.threads);
  }
  if (isClip) {
    MapClip(options, std::cout, std::cerr);
  } else {
    CheckStillOptions(options);
    MapStill(options, std::cout, std::cerr);
  }
}

}  // namespace

Subcommand AddMapCommand(CLI::App& app) {
  const auto options = std::make_shared<MapOptions>();
  CLI::App& map =
      *app.add_subcommand("map", "Map an HDR picture or clip to a lower peak or smaller gamut");
  map.add_option(
         "INPUT", options->input,
         "EXR, Radiance HDR, PNG or AVIF picture, a clip, or a sequence of pictures such as "
         "frame.%05d.exr")
      ->required();
  map.add_option("OUTPUT", options->output,
                 "PNG, EXR or AVIF picture to write; for a clip MP4, MOV, MKV or WebM, or a "
                 "sequence of pictures")
      ->required();
  AddColorSpaceOptions(map, *options, "Colour space of the input, in place of what its tags say");
  AddLuminanceOptions(map, *options);
  AddAlgorithmOptions(map, *options);
  AddDialOptions(map, *options);
  AddRunOptions(map, *options);
  AddClipOptions(map, options->clip);
  map.footer(
      "Examples:\n"
      "  quillon map photo.exr photo.png\n"
      "  quillon map --to p3-d65 --algorithm hue --knee 0.4 photo.avif photo.png\n"
      "  quillon map --to bt2100-pq --target-peak 600 master.avif display.avif\n"
      "  quillon map --peak scenes --codec hevc film.mkv film-sdr.mkv\n"
      "  quillon map --frames 240-359 film.mkv frame.%05d.png");
  return [options, &map] { RunMap(*options, map.count("--to") + map.count("--to-cicp") > 0); };
}
