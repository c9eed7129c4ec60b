#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>

#include "tools/quillon/clip/PictureSource.h"
#include "tools/quillon/clip/SameFiles.h"
#include "tools/quillon/compare/Compare.h"
#include "tools/quillon/compare/CompareClips.h"
#include "tools/quillon/compare/CompareJson.h"
#include "tools/quillon/compare/CompareOptions.h"
#include "tools/quillon/compare/CompareOutputs.h"
#include "tools/quillon/compare/CompareTable.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/io/StillFormats.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Commands.h"
#include "tools/quillon/options/Json.h"
#include "tools/quillon/options/SharedOptions.h"
#include "tools/quillon/picture/SceneLight.h"

namespace Quillon::Cli {

namespace {

/// The picture, tagged.
Still ReadCompared(const ComparedFile& file, const std::string& optionSuffix,
                   std::int64_t maxPixels, int white) {
  Still still = ReadStill(file.path, maxPixels);
  RefuseGammaOfFloats(file.path, still.frame->GetColorSpace().Description(),
                      still.frame->GetPixelFormat() == orvmediatypes::kLinearFloatBGRA,
                      file.source);
  const auto tagged = TaggedColors(file.path, still.frame->GetColorSpace().Description(),
                                   file.source, optionSuffix);
  TagPicture(still.frame, tagged, still.whiteNits, white);
  return still;
}

void NoteRemarks(std::ostream& notes, const ComparedFile& file, const Still& still, int white) {
  const std::string start = "note: " + file.path.string() + ": ";
  for (const std::string& remark : still.remarks) notes << start << remark << '\n';
  if (still.whiteNits <= 0.0F || still.whiteNits == static_cast<float>(white)) return;
  notes << start << "the file says that its 1.0 is " << still.whiteNits
        << " nits, as which it is compared\n";
}

/// What is told of one picture: the file, then the figures.
nlohmann::ordered_json PictureJson(const ComparedFile& file, const Still& still,
                                   const nlohmann::ordered_json& figures) {
  nlohmann::ordered_json json = {
      {"file", file.path.string()},
      {"color_space", ColorSpaceJson(still.frame->GetColorSpace().Description())}};
  json.update(figures);
  return json;
}

std::string Json(const CompareOptions& options, const Comparison& comparison, const Still& a,
                 const Still& b) {
  nlohmann::ordered_json json = CompareFiguresJson(comparison, options.settings);
  json["a"] = PictureJson(options.a, a, json["a"]);
  json["b"] = PictureJson(options.b, b, json["b"]);
  return FormatJson(json);
}

void PrintTable(std::ostream& out, const CompareOptions& options, const Comparison& comparison,
                const Still& a, const Still& b) {
  const auto describe = [&out](const char* name, const ComparedFile& file, const Still& still) {
    out << name << ": " << file.path.string() << ", "
        << DescribeColorSpace(still.frame->GetColorSpace().Description()) << '\n';
  };
  describe("A", options.a, a);
  describe("B", options.b, b);
  PrintComparison(out, comparison, options.settings);
}

void CompareStills(const CompareOptions& options) {
  const Still a = ReadCompared(options.a, "-a", options.maxPixels, options.settings.white);
  const Still b = ReadCompared(options.b, "-b", options.maxPixels, options.settings.white);
  if (!options.quiet) {
    NoteRemarks(std::cerr, options.a, a, options.settings.white);
    NoteRemarks(std::cerr, options.b, b, options.settings.white);
  }
  const Comparison comparison = ComparePictures(a.frame, b.frame, options.settings);
  WriteCompareView(options, comparison, a.frame, b.frame);
  const std::string json = Json(options, comparison, a, b);
  WriteCompareJson(options, json);
  if (options.PrintsJson()) {
    std::cout << json;
  } else if (!options.quiet) {
    PrintTable(std::cout, options, comparison, a, b);
  }
}

void RunCompare(const CompareOptions& options) {
  CheckCompareOptions(options);
  const InputKind a = RequireInput(options.a.path, options.maxPixels);
  const InputKind b = RequireInput(options.b.path, options.maxPixels);
  for (const auto& input : {options.a.path, options.b.path}) {
    RequireOtherFile(options.output, input);
    if (options.WritesJson()) RequireOtherFile(options.json, input);
  }
  CheckCompareTargets(options);
  if (a == InputKind::Still && b == InputKind::Still) {
    CompareStills(options);
  } else {
    CompareClips(options);
  }
}

void AddViewOptions(CLI::App& compare, CompareOptions& options) {
  CLI::Option* output = compare.add_option(
      "OUTPUT", options.output,
      "PNG picture of the view to write, in sRGB; of clips, the pictures that differ "
      "most");
  AddChoice(compare, "--view", kCompareViews, options.view,
            "What to draw (side-by-side when not given): A beside B; the left of A and the right "
            "of B; delta-E ITP in false colours; what is clipped or out of gamut")
      ->needs(output);
  AddNumber(compare, "--split", options.splitShare, 0.0, 1.0, "SHARE",
            "Share of the width that --view split gives A (0.5 when not given)")
      ->needs(output);
}

void AddOptions(CLI::App& compare, CompareOptions& options) {
  compare
      .add_option("--json", options.json,
                  "Write the figures as JSON, to a file or, in place of the table, to standard "
                  "output (-)")
      ->type_name("FILE|-");
  AddChoice(compare, "--gamut", kComparedGamuts, options.settings.gamutPrimaries,
            "Gamut that colours are counted as out of (bt2020 when not given)");
  AddWhiteOption(compare, options.settings.white,
                 "Luminance of graphics white in nits: 1.0 of SDR and of scene-linear pictures");
  AddSourceOptions(compare, options.a.source, "-a",
                   "Colour space of A, in place of what its tags say");
  AddSourceOptions(compare, options.b.source, "-b",
                   "Colour space of B, in place of what its tags say");
  AddMaxPixelsOption(compare, options.maxPixels);
  AddOutputOptions(compare, options.overwrite, options.quiet);
}

}  // namespace

Subcommand AddCompareCommand(CLI::App& app) {
  const auto options = std::make_shared<CompareOptions>();
  CLI::App& compare =
      *app.add_subcommand("compare", "Tell how far two pictures or clips of one size lie apart");
  compare.add_option("A", options->a.path, ReadStillNames() + " picture, clip, or sequence")
      ->required();
  compare.add_option("B", options->b.path, "What to compare it with, picture by picture")
      ->required();
  AddViewOptions(compare, *options);
  AddOptions(compare, *options);
  compare.footer(
      "Examples:\n"
      "  quillon compare master.avif copy.png\n"
      "  quillon compare --view delta-e master.avif copy.png difference.png\n"
      "  quillon compare --json - --gamut bt709 master.exr graded.exr");
  return [options] {
    RunCompare(*options);
    return options->Written();
  };
}

}  // namespace Quillon::Cli
