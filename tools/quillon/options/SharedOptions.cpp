#include "tools/quillon/options/SharedOptions.h"

#include <limits>

#include "mapper/Mapping.h"
#include "tools/quillon/options/ColorSpaceNames.h"

namespace Quillon::Cli {

namespace {

constexpr int kLargestLuminance = 10000;

}  // namespace

void RefuseEmptyValues(CLI::App& app) {
  for (CLI::App* command : app.get_subcommands({})) {
    for (CLI::Option* option : command->get_options()) {
      if (option->get_items_expected_max() == 0) continue;
      const std::string refusal = "the value is empty; give one (" + option->get_type_name() + ")";
      option->check([refusal](const std::string& text) {
        return text.empty() ? refusal : text.substr(0, 0);
      });
    }
  }
}

void AddColorSpaceOptions(CLI::App& app, MappingOptions& options, const std::string& fromHelp) {
  CLI::Option* to =
      app.add_option_function<std::string>(
             "--to",
             [&](const std::string& name) { options.target.colors = ColorSpaceOfName(name); },
             "Colour space of the result: " + ColorSpaceNames() +
                 " (when not given: srgb, for clips bt709)")
          ->type_name("NAME");
  app.add_option_function<std::string>(
         "--to-cicp",
         [&](const std::string& text) { options.target.colors = ColorSpaceOfCicp(text); },
         "The same by ITU-T H.273 code points")
      ->type_name("P/T/M")
      ->excludes(to);
  AddSourceOptions(app, options.source, "", fromHelp);
}

void AddSourceOptions(CLI::App& app, SourceOverride& source, const std::string& suffix,
                      const std::string& help) {
  CLI::Option* from =
      app.add_option_function<std::string>(
             "--from" + suffix,
             [&](const std::string& name) { source.colors = ColorSpaceOfName(name); }, help)
          ->type_name("NAME");
  app.add_option_function<std::string>(
         "--from-cicp" + suffix,
         [&](const std::string& text) {
           source.colors = ColorSpaceOfCicp(text);
           source.tellsMatrix = true;
         },
         "The same by ITU-T H.273 code points")
      ->type_name("P/T/M")
      ->excludes(from);
}

bool ParsePeakNumber(const std::string& text, PeakOptions& peak) {
  constexpr double kLargestPeakNits = 1e6;
  const auto nits = ParseNumberIn(text, std::numeric_limits<double>::min(), kLargestPeakNits);
  if (!nits) return false;
  peak = {PeakSource::Number, *nits};
  return true;
}

void AddPeakNumberOption(CLI::App& app, PeakOptions& peak, const std::string& help) {
  app.add_option_function<std::string>(
         "--peak",
         [&](const std::string& text) {
           if (ParsePeakNumber(text, peak)) return;
           throw CLI::ValidationError("--peak", "'" + text + "' is not " + kPeakSyntax);
         },
         help)
      ->type_name("NITS");
}

void AddTargetOptions(CLI::App& app, MappingOptions& options) {
  AddNumber(app, "--target-peak", options.target.peakNits, 1, kLargestLuminance, "NITS",
            "Peak of a PQ or HLG destination in nits");
  AddWhiteOption(app, options.settings.white,
                 "Luminance of graphics white in nits: 1.0 of an SDR destination and of "
                 "scene-linear pictures");
}

void AddWhiteOption(CLI::App& app, int& white, const std::string& help) {
  AddNumber(app, "--white", white, 1, kLargestLuminance, "NITS", help);
}

void AddAlgorithmOptions(CLI::App& app, MappingOptions& options) {
  AddChoice(app, "--algorithm", Mapper::Algorithms(), options.settings.algorithm,
            "Tone-map algorithm (auto when not given)");
  AddChoice(app, "--gamut", Mapper::GamutAlgorithms(), options.settings.gamut,
            "Gamut compression before the tone curve (none when not given)");
  AddChoice(app, "--fit", Mapper::GamutFittings(), options.fit,
            "What becomes of colours that the destination has not: hue reduces their chroma at "
            "constant hue, clip ends each channel on its own (hue when not given, but for EXR, "
            "which keeps them)");
}

void AddDialOptions(CLI::App& app, MappingOptions& options) {
  AddNumber(app, "--knee", options.settings.knee, 0.0F, 1.0F, "SHARE",
            "Where the curve leaves the straight line, 0 to 1 of the destination's peak; for hue "
            "and car (0.5 when not given)");
  AddNumber(app, "--gain", options.settings.gain, 1e-6F, 1e6F, "FACTOR",
            "Multiplies the picture before the curve (1 when not given)");
  AddNumber(app, "--preserve", options.settings.colorPreservation, 0.0F, 1.0F, "SHARE",
            "Colour preservation in highlights: 0 lets them go to white, 1 keeps their hue and "
            "saturation (0.95 when not given)");
}

void AddMaxPixelsOption(CLI::App& app, std::int64_t& maxPixels) {
  constexpr std::int64_t kMost = std::int64_t{65535} * 65535;
  AddNumber(
      app, "--max-pixels", maxPixels, 1, kMost, "COUNT",
      "Most pixels of a picture that is read; larger ones are refused before they take memory");
}

void AddDeviceOption(CLI::App& app, std::string& device) {
  const auto assign = [&device](const std::string& text) {
    if (!Mapper::IsDeviceName(text)) {
      throw CLI::ValidationError("--device", "'" + text + "' is none of " + Mapper::kDeviceSyntax +
                                                 ", N being a number that 'quillon devices' shows");
    }
    device = text;
  };
  app.add_option_function<std::string>("--device", assign,
                                       "Where to map: the processor (cpu, when not given), the "
                                       "first GPU, or one that 'quillon devices' lists")
      ->type_name(Mapper::kDeviceSyntax);
}

void AddOutputOptions(CLI::App& app, bool& overwrite, bool& quiet) {
  app.add_flag("--overwrite", overwrite, "Replace an output that exists");
  app.add_flag("--quiet", quiet, "Print nothing but errors");
}

}  // namespace Quillon::Cli
