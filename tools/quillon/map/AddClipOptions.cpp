#include "tools/quillon/map/AddClipOptions.h"

#include <array>

#include "tools/quillon/options/SharedOptions.h"

namespace Quillon::Cli {

namespace {

constexpr const char* kGroup = "Clips";

constexpr std::array<Choice<ProgressStyle>, 3> kProgressStyles = {{
    {"auto", ProgressStyle::Auto},
    {"json", ProgressStyle::Json},
    {"none", ProgressStyle::None},
}};

template <class Value, std::size_t Count>
void AddWish(CLI::App& app, const std::string& name,
             const std::array<Choice<Value>, Count>& choices, std::optional<Value>& wish,
             const std::string& help) {
  app.add_option_function<std::string>(
         name,
         [&choices, &wish, name](const std::string& text) {
           wish = ParseChoice(name, choices, text);
         },
         help)
      ->type_name(ChoiceNames(choices))
      ->group(kGroup);
}

void AddEncodingOptions(CLI::App& app, EncodingWishes& wishes) {
  AddWish(app, "--codec", kVideoCodecs, wishes.codec,
          "Encoder (hevc for PQ and HLG, else h264; av1 in WebM)");
  AddWish(app, "--chroma", kSamplings, wishes.sampling,
          "Chroma samples (420; prores 422; ffv1 those of the source)");
  AddNumber(app, "--quality", wishes.quality, 0.0, 63.0, "CRF",
            "Constant rate factor of the encoder, smaller is better (h264 18, hevc 20, av1 28)")
      ->group(kGroup);
  app.add_option("--preset", wishes.preset,
                 "Speed of the encoder, by its own names (h264 and hevc medium, av1 8)")
      ->type_name("NAME")
      ->group(kGroup);
}

void AddSelectionOptions(CLI::App& app, ClipOptions& options) {
  app.add_option_function<std::string>(
         "--frames",
         [&options](const std::string& text) {
           options.frames = ParseFrameRanges(text);
           if (!options.frames) {
             throw CLI::ValidationError(
                 "--frames", "'" + text + "' is no list of frame numbers such as 10-99,200");
           }
         },
         "Map these frames alone, counted from 0")
      ->type_name("A-B,C")
      ->group(kGroup);
  app.add_option_function<std::string>(
         "--chunk",
         [&options](const std::string& text) {
           options.chunk = ParseChunk(text);
           if (!options.chunk) {
             throw CLI::ValidationError("--chunk",
                                        "'" + text + "' is no part of a clip such as 2/8");
           }
         },
         "Map part I of N equal parts")
      ->type_name("I/N")
      ->group(kGroup);
  AddNumber(app, "--fps", options.sequenceRate, 0.1, 1000.0, "RATE",
            "Frames a second of an input that is a sequence of pictures (24 when not given)")
      ->group(kGroup);
}

}  // namespace

void AddClipOptions(CLI::App& app, ClipOptions& options) {
  AddEncodingOptions(app, options.encoding);
  AddSelectionOptions(app, options);
  AddWish(app, "--progress", kProgressStyles, options.progress,
          "Progress on standard error: a line on terminals, or one JSON object a line");
  app.add_flag("--resume", options.resume, "Go on where an earlier run of the same was broken off")
      ->group(kGroup);
  app.add_flag("--keep-damaged", options.keepDamaged,
               "Map damaged pictures as the decoder patches them up, instead of stopping there")
      ->group(kGroup);
  app.add_flag("--dry-run", options.dryRun, "Say what would be done, and do not do it")
      ->group(kGroup);
}

}  // namespace Quillon::Cli
