#include <CLI/CLI.hpp>
#include <array>
#include <charconv>
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>
#include <string_view>

#include <oneapi/tbb/global_control.h>

#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/Commands.h"
#include "tools/quillon/ExitCodes.h"
#include "tools/quillon/MapOptions.h"
#include "tools/quillon/MapStill.h"

using orvmediatypes::color::GamutCompressionAlgorithmType;
using orvmediatypes::color::ToneMapAlgorithmType;

namespace {

template <class Value>
struct Choice {
  std::string_view name;
  Value value;
};

constexpr std::array<Choice<ToneMapAlgorithmType>, 7> kAlgorithms = {{
    {"auto", ToneMapAlgorithmType::Automatic},
    {"bt2390-maxrgb", ToneMapAlgorithmType::ITU2390MaxRGB},
    {"bt2390-rgb", ToneMapAlgorithmType::ITU2390RGBByChannel},
    {"bt2446a", ToneMapAlgorithmType::ITU2446A},
    {"hue", ToneMapAlgorithmType::HuePreservationDesaturation},
    {"car", ToneMapAlgorithmType::CARToneCurve},
    {"none", ToneMapAlgorithmType::None},
}};

constexpr std::array<Choice<GamutCompressionAlgorithmType>, 3> kGamuts = {{
    {"none", GamutCompressionAlgorithmType::None},
    {"reinhard", GamutCompressionAlgorithmType::Reinhard},
    {"desaturate", GamutCompressionAlgorithmType::Desaturation},
}};

/// An option that takes one of the named values and refuses all others.
template <class Value, std::size_t Count>
CLI::Option* AddChoice(CLI::App& app, const std::string& name,
                       const std::array<Choice<Value>, Count>& choices, Value& value,
                       const std::string& help) {
  std::string names;
  for (const auto& choice : choices) {
    names += (names.empty() ? "" : "|") + std::string(choice.name);
  }
  const auto assign = [&choices, &value, name, names](const std::string& text) {
    for (const auto& choice : choices) {
      if (choice.name == text) {
        value = choice.value;
        return;
      }
    }
    throw CLI::ValidationError(name, "'" + text + "' is none of " + names);
  };
  return app.add_option_function<std::string>(name, assign, help)->type_name(names);
}

void ParsePeak(const std::string& text, MapOptions& options) {
  if (text == "metadata") {
    options.peakSource = PeakSource::Metadata;
    return;
  }
  if (text == "measure") {
    options.peakSource = PeakSource::Measure;
    return;
  }
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, options.peakNits);
  if (error != std::errc() || rest != end || !(options.peakNits > 0.0) ||
      !std::isfinite(options.peakNits)) {
    throw CLI::ValidationError(
        "--peak",
        "'" + text + "' is neither a number of nits above 0, nor 'metadata', nor 'measure'");
  }
  options.peakSource = PeakSource::Number;
}

void AddColorSpaceOptions(CLI::App& map, MapOptions& options) {
  const std::string names = "NAME";
  CLI::Option* to =
      map.add_option_function<std::string>(
             "--to", [&](const std::string& name) { options.destination = ColorSpaceOfName(name); },
             "Colour space of the result: " + ColorSpaceNames() + " (srgb when not given)")
          ->type_name(names);
  map.add_option_function<std::string>(
         "--to-cicp",
         [&](const std::string& text) { options.destination = ColorSpaceOfCicp(text); },
         "The same by ITU-T H.273 code points")
      ->type_name("P/T/M")
      ->excludes(to);
  CLI::Option* from =
      map.add_option_function<std::string>(
             "--from", [&](const std::string& name) { options.source = ColorSpaceOfName(name); },
             "Colour space of the input, in place of what its tags say")
          ->type_name(names);
  map.add_option_function<std::string>(
         "--from-cicp",
         [&](const std::string& text) {
           options.source = ColorSpaceOfCicp(text);
           options.sourceTellsMatrix = true;
         },
         "The same by ITU-T H.273 code points")
      ->type_name("P/T/M")
      ->excludes(from);
}

void AddLuminanceOptions(CLI::App& map, MapOptions& options) {
  map.add_option_function<std::string>(
         "--peak", [&](const std::string& text) { ParsePeak(text, options); },
         "Peak of the source in nits, or where to take it from. When not given: the file's "
         "metadata (MaxCLL, else the mastering display); without any, measured for scene-linear "
         "pictures, else 10000 for PQ and 1000 for HLG")
      ->type_name("NITS|metadata|measure");
  map.add_option("--target-peak", options.targetPeakNits, "Peak of a PQ or HLG destination in nits")
      ->check(CLI::Range(1, 10000))
      ->type_name("NITS");
  map.add_option("--white", options.white,
                 "Luminance of graphics white in nits: 1.0 of an SDR destination and of "
                 "scene-linear pictures")
      ->check(CLI::Range(1, 10000))
      ->type_name("NITS")
      ->capture_default_str();
}

void AddCurveOptions(CLI::App& map, MapOptions& options) {
  AddChoice(map, "--algorithm", kAlgorithms, options.algorithm,
            "Tone-map algorithm (auto when not given)");
  AddChoice(map, "--gamut", kGamuts, options.gamut, "Gamut compression (none when not given)");
  map.add_option("--knee", options.knee,
                 "Where the curve leaves the straight line, 0 to 1 of the destination's peak; for "
                 "hue and car (0.5 when not given)")
      ->check(CLI::Range(0.0, 1.0))
      ->type_name("SHARE");
  map.add_option("--gain", options.gain,
                 "Multiplies the picture before the curve (1 when not given)")
      ->check(CLI::PositiveNumber)
      ->type_name("FACTOR");
  map.add_option(
         "--preserve", options.colorPreservation,
         "Colour preservation in highlights: 0 lets them go to white, 1 keeps their hue and "
         "saturation (0.5 when not given)")
      ->check(CLI::Range(0.0, 1.0))
      ->type_name("SHARE");
}

void AddRunOptions(CLI::App& map, MapOptions& options) {
  map.add_option("--depth", options.depth,
                 "Bits of a component in the output. PNG: 8 or 16; AVIF: 8, 10 or 12; EXR: 16 "
                 "(half) or 32 (float)")
      ->type_name("BITS");
  map.add_option("--threads", options.threads, "Threads to use (all processors when not given)")
      ->check(CLI::Range(1, 1024))
      ->type_name("COUNT");
  map.add_flag("--explain", options.explain, "Print the resolved settings");
  map.add_flag("--overwrite", options.overwrite, "Replace an output that exists");
  map.add_flag("--quiet", options.quiet, "Print nothing but errors");
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
  AddColorSpaceOptions(map, *options);
  AddLuminanceOptions(map, *options);
  AddCurveOptions(map, *options);
  AddRunOptions(map, *options);
  map.footer(
      "Examples:\n"
      "  quillon map photo.exr photo.png\n"
      "  quillon map --to p3-d65 --algorithm hue --knee 0.4 photo.avif photo.png\n"
      "  quillon map --to bt2100-pq --target-peak 600 master.avif display.avif");
  return [options] { RunMap(*options); };
}
