#include "tools/quillon/SharedOptions.h"

#include <charconv>
#include <cmath>

#include "tools/quillon/AlgorithmNames.h"
#include "tools/quillon/ColorSpaceNames.h"

namespace {

constexpr double kLargestPeakNits = 1e6;

void ParsePeakNumber(const std::string& text, MapOptions& options) {
  if (!ParseNits(text, options.peakNits) || options.peakNits > kLargestPeakNits) {
    throw CLI::ValidationError("--peak",
                               "'" + text + "' is no number of nits above 0 and up to 1000000");
  }
  options.peakSource = PeakSource::Number;
}

}  // namespace

CLI::Validator NumberIn(double least, double most) {
  const CLI::Validator range = CLI::Range(least, most);
  CLI::Validator finite(
      [](std::string& text) {
        double number = 0.0;
        const bool isNan = CLI::detail::lexical_cast(text, number) && std::isnan(number);
        return isNan ? "'" + text + "' is not a number" : std::string();
      },
      "");
  return range & finite;
}

bool ParseNits(const std::string& text, double& nits) {
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, nits);
  return error == std::errc() && rest == end && nits > 0.0 && std::isfinite(nits);
}

void AddColorSpaceOptions(CLI::App& app, MapOptions& options, const std::string& fromHelp) {
  CLI::Option* to =
      app.add_option_function<std::string>(
             "--to", [&](const std::string& name) { options.destination = ColorSpaceOfName(name); },
             "Colour space of the result: " + ColorSpaceNames() +
                 " (when not given: srgb, for clips bt709)")
          ->type_name("NAME");
  app.add_option_function<std::string>(
         "--to-cicp",
         [&](const std::string& text) { options.destination = ColorSpaceOfCicp(text); },
         "The same by ITU-T H.273 code points")
      ->type_name("P/T/M")
      ->excludes(to);
  AddSourceOptions(app, options.source, options.sourceTellsMatrix, "", fromHelp);
}

void AddSourceOptions(CLI::App& app, std::optional<orvmediatypes::color::ColorDescription>& source,
                      bool& tellsMatrix, const std::string& suffix, const std::string& help) {
  CLI::Option* from =
      app.add_option_function<std::string>(
             "--from" + suffix, [&](const std::string& name) { source = ColorSpaceOfName(name); },
             help)
          ->type_name("NAME");
  app.add_option_function<std::string>(
         "--from-cicp" + suffix,
         [&](const std::string& text) {
           source = ColorSpaceOfCicp(text);
           tellsMatrix = true;
         },
         "The same by ITU-T H.273 code points")
      ->type_name("P/T/M")
      ->excludes(from);
}

void AddPeakNumberOption(CLI::App& app, MapOptions& options, const std::string& help) {
  app.add_option_function<std::string>(
         "--peak", [&](const std::string& text) { ParsePeakNumber(text, options); }, help)
      ->type_name("NITS");
}

void AddTargetOptions(CLI::App& app, MapOptions& options) {
  app.add_option("--target-peak", options.targetPeakNits, "Peak of a PQ or HLG destination in nits")
      ->check(CLI::Range(1, 10000))
      ->type_name("NITS");
  app.add_option("--white", options.white,
                 "Luminance of graphics white in nits: 1.0 of an SDR destination and of "
                 "scene-linear pictures")
      ->check(CLI::Range(1, 10000))
      ->type_name("NITS")
      ->capture_default_str();
}

void AddAlgorithmOptions(CLI::App& app, MapOptions& options) {
  AddChoice(app, "--algorithm", kAlgorithms, options.algorithm,
            "Tone-map algorithm (auto when not given)");
  AddChoice(app, "--gamut", kGamuts, options.gamut, "Gamut compression (none when not given)");
}

void AddDialOptions(CLI::App& app, MapOptions& options) {
  app.add_option("--knee", options.knee,
                 "Where the curve leaves the straight line, 0 to 1 of the destination's peak; for "
                 "hue and car (0.5 when not given)")
      ->check(NumberIn(0.0, 1.0))
      ->type_name("SHARE");
  app.add_option("--gain", options.gain,
                 "Multiplies the picture before the curve (1 when not given)")
      ->check(NumberIn(1e-6, 1e6))
      ->type_name("FACTOR");
  app.add_option(
         "--preserve", options.colorPreservation,
         "Colour preservation in highlights: 0 lets them go to white, 1 keeps their hue and "
         "saturation (0.5 when not given)")
      ->check(NumberIn(0.0, 1.0))
      ->type_name("SHARE");
}

void AddDeviceOption(CLI::App& app, MapOptions& options) {
  app.add_option_function<std::string>(
         "--device", [&](const std::string& text) { options.device = ParseDevice(text); },
         "Where to map: the processor (cpu, when not given), the first GPU, or one that 'quillon "
         "devices' lists")
      ->type_name(kDeviceSyntax);
}

void AddOutputOptions(CLI::App& app, MapOptions& options) {
  AddOutputOptions(app, options.overwrite, options.quiet);
}

void AddOutputOptions(CLI::App& app, bool& overwrite, bool& quiet) {
  app.add_flag("--overwrite", overwrite, "Replace an output that exists");
  app.add_flag("--quiet", quiet, "Print nothing but errors");
}
