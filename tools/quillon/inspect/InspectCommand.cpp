#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

#include "tools/quillon/clip/MeasureClip.h"
#include "tools/quillon/clip/SameFiles.h"
#include "tools/quillon/inspect/ContactSheet.h"
#include "tools/quillon/inspect/InspectReport.h"
#include "tools/quillon/inspect/LevelsScene.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/io/WriteStill.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Commands.h"
#include "tools/quillon/options/SharedOptions.h"
#include "tools/quillon/picture/BitmapFrame.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/MapPicture.h"
#include "tools/quillon/plot/DrawScene.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

struct InspectOptions {
  fs::path input;
  SourceOverride source;
  int white = 203;
  std::int64_t maxPixels = kDefaultMaxPixels;
  bool overwrite = false;
  bool quiet = false;
  bool measure = false;
  fs::path json;
  fs::path plot;
  fs::path sheet;
};

constexpr int kFloatBits = 32;

bool IsSvg(const fs::path& path) { return LowerCaseExtension(path) == ".svg"; }

void CheckDrawing(const fs::path& path, bool svgToo, bool overwrite) {
  if (path.empty()) return;
  if (LowerCaseExtension(path) != ".png" && !(svgToo && IsSvg(path))) {
    throw CommandError(ExitCode::NotSupported,
                       path.string() + ": it is drawn as " +
                           (svgToo ? "SVG or PNG; name it .svg or .png" : "PNG; name it .png"));
  }
  CheckTargetFile(path, overwrite);
}

void Refuse(bool condition, const char* sentence) {
  if (condition) throw CommandError(ExitCode::Usage, sentence);
}

bool WritesJson(const InspectOptions& options) {
  return !options.json.empty() && options.json != "-";
}

/// The files that are written.
std::vector<fs::path> Written(const InspectOptions& options) {
  std::vector<fs::path> files;
  if (WritesJson(options)) files.push_back(options.json);
  if (!options.plot.empty()) files.push_back(options.plot);
  if (!options.sheet.empty()) files.push_back(options.sheet);
  return files;
}

void CheckEffects(const InspectOptions& options) {
  std::vector<fs::path> files = Written(options);
  Refuse(options.overwrite && files.empty(),
         "--overwrite has no effect where no file is written; leave it out");
  std::sort(files.begin(), files.end());
  Refuse(std::adjacent_find(files.begin(), files.end()) != files.end(),
         "--json, --plot and --sheet cannot be one file; give each a name of its own");
}

void CheckTargets(const InspectOptions& options) {
  for (const auto& output : {options.plot, options.sheet, options.json}) {
    if (output != "-") RequireOtherFile(output, options.input);
  }
  CheckDrawing(options.plot, true, options.overwrite);
  CheckDrawing(options.sheet, false, options.overwrite);
  if (WritesJson(options)) CheckTargetFile(options.json, options.overwrite);
}

void WriteText(const fs::path& path, const std::string& text, bool overwrite) {
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  WriteTargetFile(path, bytes, overwrite);
}

void WriteDrawing(const Scene& scene, const fs::path& path, bool overwrite) {
  if (IsSvg(path)) return WriteText(path, DrawSvg(scene), overwrite);
  StillOutput output;
  output.frame = FrameOfBitmap(DrawBitmap(scene));
  output.overwrite = overwrite;
  WriteStill(output, path);
}

/// The peak that `quillon map` would take of itself.
std::optional<Mapper::SourcePeak> PeakOf(const InspectOptions& options,
                                         const Inspection& inspection) {
  const ClipTags& tags = inspection.info.tags;
  try {
    const Mapper::Source source{TaggedColors(options.input, tags.colors, options.source),
                                tags.light};
    const auto steady = [&] { return inspection.levels ? inspection.levels->SteadyPeak() : 0.0; };
    const auto kind = inspection.kind == InputKind::Still ? PictureKind::Still : PictureKind::Clip;
    const auto peak = ChooseSourcePeak({}, options.input, source, kind, options.white, steady);
    return peak.nits > 0.0 ? std::optional(peak) : std::nullopt;
  } catch (const CommandError&) {
    return std::nullopt;  // the tags do not tell the colours, which a warning says
  }
}

ClipLevels Measure(const InspectOptions& options) {
  MeasureRequest request;
  request.clip = options.input;
  request.white = options.white;
  request.maxPixels = options.maxPixels;
  request.progress = options.quiet ? ProgressStyle::None : ProgressStyle::Auto;
  request.colorsOf = [&options](const ClipTags& tags) {
    return TaggedColors(options.input, tags.colors, options.source);
  };
  return LevelsOfClip(request, std::cerr);
}

Inspection Inspect(const InspectOptions& options, InputKind kind) {
  Inspection inspection;
  inspection.path = options.input;
  inspection.kind = kind;
  inspection.info =
      OpenPictures(options.input, {24, 1}, nullptr, 0, DamagePolicy::Stop, options.maxPixels)
          ->Info();
  RefuseGammaOfFloats(options.input, inspection.info.tags.colors,
                      inspection.info.bits == kFloatBits, options.source);
  if (options.measure) {
    inspection.levels = Measure(options);
    inspection.scenes = FindScenes(inspection.levels->frames, kShortestScene);
  }
  inspection.peak = PeakOf(options, inspection);
  inspection.warnings = FindDisagreements(inspection.info.tags, inspection.levels);
  return inspection;
}

void RunInspect(InspectOptions options) {
  CheckEffects(options);
  options.measure = options.measure || !options.plot.empty();
  const InputKind kind = RequireInput(options.input, options.maxPixels);
  CheckTargets(options);
  const Inspection inspection = Inspect(options, kind);
  if (!options.plot.empty() && inspection.levels) {
    WriteDrawing(MakeLevelsScene(inspection, *inspection.levels), options.plot, options.overwrite);
  }
  if (!options.sheet.empty()) {
    const double peak = inspection.peak ? inspection.peak->nits : options.white;
    WriteDrawing(
        MakeContactSheet({options.input, options.source, options.white, options.maxPixels}, peak),
        options.sheet, options.overwrite);
  }
  if (options.json == "-") {
    std::cout << InspectionJson(inspection);
    return;
  }
  if (!options.json.empty()) {
    WriteText(options.json, InspectionJson(inspection), options.overwrite);
  }
  if (!options.quiet) PrintInspection(std::cout, inspection);
}

}  // namespace

Subcommand AddInspectCommand(CLI::App& app) {
  const auto options = std::make_shared<InspectOptions>();
  CLI::App& inspect = *app.add_subcommand(
      "inspect", "Tell what a clip or picture says of its light, and what is so");
  inspect.add_option("FILE", options->input, "Clip, picture, or sequence of pictures")->required();
  inspect.add_flag("--measure", options->measure, "Measure the light levels of every frame");
  inspect
      .add_option("--json", options->json,
                  "Write it as JSON, to a file or, in place of the table, to standard output (-)")
      ->type_name("FILE|-");
  inspect
      .add_option("--plot", options->plot,
                  "Measure, and draw the light levels over time (SVG or PNG)")
      ->type_name("FILE");
  inspect
      .add_option("--sheet", options->sheet,
                  "Draw twelve frames side by side in sRGB, HDR mapped as 'quillon map' does (PNG)")
      ->type_name("FILE");
  AddSourceOptions(inspect, options->source, "",
                   "Colour space of the input, in place of what its tags say");
  AddWhiteOption(inspect, options->white, "Luminance of graphics white in nits");
  AddMaxPixelsOption(inspect, options->maxPixels);
  AddOutputOptions(inspect, options->overwrite, options->quiet);
  inspect.footer(
      "Examples:\n"
      "  quillon inspect film.mkv\n"
      "  quillon inspect --measure --json levels.json --plot levels.svg film.mkv");
  return [options] {
    RunInspect(*options);
    return Written(*options);
  };
}

}  // namespace Quillon::Cli
