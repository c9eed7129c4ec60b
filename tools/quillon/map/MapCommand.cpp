#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>

#include <oneapi/tbb/global_control.h>

#include "tools/quillon/clip/PictureSource.h"
#include "tools/quillon/clip/SameFiles.h"
#include "tools/quillon/io/StillFormats.h"
#include "tools/quillon/io/WriteStill.h"
#include "tools/quillon/map/AddClipOptions.h"
#include "tools/quillon/map/MapClip.h"
#include "tools/quillon/map/MapOptions.h"
#include "tools/quillon/map/MapStill.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Commands.h"
#include "tools/quillon/options/SharedOptions.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

namespace {

constexpr std::array<Choice<PeakSource>, 3> kPeakSources = {{{"metadata", PeakSource::Metadata},
                                                             {"measure", PeakSource::Measure},
                                                             {"scenes", PeakSource::Scenes}}};

/// The percentile behind the name of a measurement.
double ParsePercent(const std::string& text) {
  const auto percent = ParseNumberIn(text, std::numeric_limits<double>::min(), 100.0);
  if (percent) return *percent;
  throw CLI::ValidationError("--peak", "'" + text +
                                           "' is no percentile of the pixels: a number above 0 "
                                           "and up to 100, as in measure:99.9");
}

void ParsePeak(const std::string& text, PeakOptions& peak) {
  const std::size_t colon = text.find(':');
  for (const auto& choice : kPeakSources) {
    if (choice.name != text.substr(0, colon)) continue;
    if (colon != std::string::npos) {
      if (choice.value == PeakSource::Metadata) break;
      peak.percent = ParsePercent(text.substr(colon + 1));
    }
    peak.from = choice.value;
    return;
  }
  if (!ParsePeakNumber(text, peak)) {
    throw CLI::ValidationError("--peak", "'" + text + "' is neither " + kPeakSyntax +
                                             ", nor 'metadata', 'measure' or 'scenes'");
  }
}

void AddLuminanceOptions(CLI::App& map, MappingOptions& options) {
  map.add_option_function<std::string>(
         "--peak", [&](const std::string& text) { ParsePeak(text, options.peak); },
         "Peak of the source in nits, or where to take it from. When not given: the file's "
         "metadata (MaxCLL, else the mastering display); without any, measured for scene-linear "
         "pictures and PQ stills, else 10000 for PQ and 1000 for HLG. measure: in a pass over the "
         "picture or clip, what 99.99 % of the pixels, or as many as are told, do not exceed; "
         "scenes: the same, for each scene of a clip")
      ->type_name("NITS|metadata|measure[:PERCENT]|scenes[:PERCENT]");
  AddTargetOptions(map, options);
}

void AddExposureOption(CLI::App& map, MappingOptions& options) {
  map.add_option_function<std::string>(
         "--exposure",
         [&](const std::string& text) {
           constexpr double kMostStops = 20.0;
           const auto stops = ParseNumberIn(text, -kMostStops, kMostStops);
           if (!stops && text != "auto") {
             throw CLI::ValidationError("--exposure",
                                        "'" + text +
                                            "' is neither a number of stops from -20 to "
                                            "20 nor 'auto'");
           }
           options.exposure = {!stops.has_value(), stops.value_or(0.0)};
         },
         "Multiplies the light of a scene-linear picture or clip by 2^STOPS before all else. auto: "
         "brings its log-average luminance to 0.18 of white, by 8 stops at most")
      ->type_name("STOPS|auto");
}

void AddRunOptions(CLI::App& map, MapOptions& options) {
  AddNumber(map, "--depth", options.depth, 8, 32, "BITS",
            "Bits of a component in the output. PNG: 8 or 16; AVIF: 8, 10 or 12; EXR: 16 (half) or "
            "32 (float); clips: what the encoder takes");
  AddDeviceOption(map, options.mapping.device);
  AddNumber(map, "--threads", options.threads, 1, 1024, "COUNT",
            "Threads to use (all processors when not given)");
  AddMaxPixelsOption(map, options.maxPixels);
  map.add_flag("--explain", options.explain, "Print the resolved settings");
  AddOutputOptions(map, options.overwrite, options.quiet);
}

/// A still becomes a still, what has several pictures a clip or a sequence.
void RequireFittingOutput(const MapOptions& options, InputKind kind) {
  const std::string in = options.input.string();
  const std::string out = options.output.string();
  if (kind == InputKind::Still && NamesClip(options.output)) {
    throw CommandError(ExitCode::NotSupported, out + ": this is the name of a clip, and " + in +
                                                   " is a still; choose " +
                                                   WrittenStillExtensions());
  }
  const bool single = kind != InputKind::Still && !SequenceName::Parse(options.output);
  if (single && NamesStill(options.output)) {
    throw CommandError(ExitCode::NotSupported,
                       out + ": this is the name of a still, and " + in + " is a " +
                           (kind == InputKind::Clip ? "clip" : "sequence") +
                           "; choose .mp4, .mov, .mkv or .webm, or a sequence such as "
                           "frame.%05d.png");
  }
}

void RunMap(MapOptions options, bool destinationGiven, bool inPlace) {
  if (!destinationGiven) options.mapping.target.colors = ColorSpaceOfName("srgb");
  CheckMapOptions(options);
  const InputKind kind = RequireInput(options.input, options.maxPixels);
  if (!destinationGiven && kind != InputKind::Still) {
    options.mapping.target.colors = ColorSpaceOfName("bt709");
  }
  RequireFittingOutput(options, kind);
  SettleFit(options.mapping, HoldsAnyColor(options.output));
  CheckInPlace(options.output, options.input, inPlace);
  options.overwrite = options.overwrite || inPlace;
  std::optional<tbb::global_control> limit;
  if (options.threads.has_value()) {
    limit.emplace(tbb::global_control::max_allowed_parallelism, *options.threads);
  }
  if (kind == InputKind::Still) {
    CheckStillOptions(options);
    MapStill(options, std::cout, std::cerr);
  } else {
    CheckClipOptions(options);
    MapClip(options, std::cout, std::cerr);
  }
}

}  // namespace

Subcommand AddMapCommand(CLI::App& app) {
  const auto options = std::make_shared<MapOptions>();
  const auto inPlace = std::make_shared<bool>(false);
  CLI::App& map =
      *app.add_subcommand("map", "Map an HDR picture or clip to a lower peak or smaller gamut");
  map.add_option("INPUT", options->input,
                 ReadStillNames() +
                     " picture, a clip, or a sequence of pictures such as "
                     "frame.%05d.exr")
      ->required();
  map.add_option("OUTPUT", options->output,
                 WrittenStillNames() +
                     " picture to write; for a clip MP4, MOV, MKV or WebM, or a "
                     "sequence of pictures")
      ->required();
  AddColorSpaceOptions(map, options->mapping,
                       "Colour space of the input, in place of what its tags say");
  AddLuminanceOptions(map, options->mapping);
  AddAlgorithmOptions(map, options->mapping);
  AddDialOptions(map, options->mapping);
  AddExposureOption(map, options->mapping);
  AddRunOptions(map, *options);
  map.add_flag("--in-place", *inPlace, "Replace the input, which OUTPUT is, by the whole result");
  AddClipOptions(map, options->clip);
  map.footer(
      "Examples:\n"
      "  quillon map photo.exr photo.png\n"
      "  quillon map --to p3-d65 --algorithm hue --knee 0.4 photo.avif photo.png\n"
      "  quillon map --to bt2100-pq --target-peak 600 master.avif display.avif\n"
      "  quillon map --peak scenes --codec hevc film.mkv film-sdr.mkv\n"
      "  quillon map --frames 240-359 film.mkv frame.%05d.png");
  return [options, inPlace, &map] {
    RunMap(*options, map.count("--to") + map.count("--to-cicp") > 0, *inPlace);
    const bool writes = !options->clip.dryRun;
    return writes ? std::vector{options->output} : std::vector<std::filesystem::path>();
  };
}

}  // namespace Quillon::Cli
