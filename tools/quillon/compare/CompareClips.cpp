#include "tools/quillon/compare/CompareClips.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "tools/quillon/clip/PictureSource.h"
#include "tools/quillon/clip/Progress.h"
#include "tools/quillon/compare/CompareJson.h"
#include "tools/quillon/compare/CompareOutputs.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Json.h"
#include "tools/quillon/picture/SceneLight.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/process/Interrupt.h"
#include "tools/quillon/process/Words.h"

namespace Quillon::Cli {

using nlohmann::ordered_json;

namespace {

/// One of the two clips.
class ComparedClip {
 public:
  ComparedClip(const ComparedFile& file, std::string suffix, std::int64_t maxPixels, int white)
      : file_(file),
        suffix_(std::move(suffix)),
        white_(white),
        source_(OpenPictures(file.path, {24, 1}, nullptr, 0, DamagePolicy::Stop, maxPixels)) {}

  /// The next picture, tagged.
  std::optional<ClipPicture> Next() {
    auto picture = source_->Next();
    if (!picture) {
      RequireWhole(file_.path, source_->Damage());
      return std::nullopt;
    }
    const auto tagged = TaggedColors(file_.path, picture->tags.colors, file_.source, suffix_);
    TagPicture(picture->frame, tagged, picture->tags.whiteNits, white_);
    colors_ = tagged;
    return picture;
  }

  std::int64_t Frames() const { return source_->Info().frames; }
  ordered_json Json() const {
    return {{"file", file_.path.string()}, {"color_space", ColorSpaceJson(colors_)}};
  }
  std::string Describe() const { return file_.path.string() + ", " + DescribeColorSpace(colors_); }
  const std::filesystem::path& Path() const { return file_.path; }

 private:
  const ComparedFile& file_;
  std::string suffix_;
  int white_;
  std::unique_ptr<PictureSource> source_;
  orvmediatypes::color::ColorDescription colors_;
};

/// Mean of what some of the frames have.
class Mean {
 public:
  void Add(double value) {
    sum_ += value;
    ++count_;
  }
  std::optional<double> Value() const {
    return count_ == 0 ? std::nullopt : std::optional(sum_ / static_cast<double>(count_));
  }

 private:
  double sum_ = 0.0;
  std::int64_t count_ = 0;
};

struct Totals {
  std::int64_t frames = 0;
  Mean deltaE;
  Mean pqError;
  Mean ownError;
  double largestMean = -1.0;
  std::int64_t worstFrame = 0;
  double maxDeltaE = 0.0;
  ordered_json perFrame = ordered_json::array();
};

/// The pair of pictures that differs most.
struct WorstPair {
  ClipPicture a;
  ClipPicture b;
  Comparison comparison;
};

void Add(const CompareOptions& options, const Comparison& comparison, Totals& totals) {
  ordered_json frame = {{"frame", totals.frames++}};
  frame.update(CompareFiguresJson(comparison, options.settings));
  totals.perFrame.push_back(std::move(frame));
  if (comparison.pqError) totals.pqError.Add(comparison.pqError->meanSquared);
  if (comparison.ownError) totals.ownError.Add(comparison.ownError->meanSquared);
  if (!comparison.deltaEFigures) return;
  totals.deltaE.Add(comparison.deltaEFigures->mean);
  totals.maxDeltaE = std::max(totals.maxDeltaE, comparison.deltaEFigures->max);
}

std::optional<double> PsnrDb(const Mean& error) {
  const auto mean = error.Value();
  return mean ? SignalError{*mean}.PsnrDb() : std::nullopt;
}

/// Null where there is no figure, and where the ratio is infinite: the mean error is then 0.
ordered_json PsnrJson(const Mean& error) {
  const auto mean = error.Value();
  if (!mean) return nullptr;
  ordered_json json = {{"db", nullptr}, {"mean_squared_error", *mean}};
  if (const auto psnr = PsnrDb(error)) json["db"] = *psnr;
  return json;
}

std::string Json(const ComparedClip& a, const ComparedClip& b, const Totals& totals) {
  ordered_json deltaE = nullptr;
  if (const auto mean = totals.deltaE.Value()) {
    deltaE = {{"mean", *mean},
              {"max", totals.maxDeltaE},
              {"worst_frame", totals.worstFrame},
              {"worst_frame_mean", totals.largestMean}};
  }
  return FormatJson({{"frames_compared", totals.frames},
                     {"delta_e_itp", deltaE},
                     {"psnr_pq_bt2020", PsnrJson(totals.pqError)},
                     {"psnr_own_signal", PsnrJson(totals.ownError)},
                     {"a", a.Json()},
                     {"b", b.Json()},
                     {"frames", totals.perFrame}});
}

std::string PsnrText(const Mean& error) {
  const auto psnr = PsnrDb(error);
  if (!psnr) return "infinite: there is no difference";
  char text[32];
  std::snprintf(text, sizeof text, "%.2f dB", *psnr);
  return text;
}

void Print(const ComparedClip& a, const ComparedClip& b, const Totals& totals) {
  std::cout << "A: " << a.Describe() << "\nB: " << b.Describe() << '\n'
            << "frames compared         " << totals.frames << '\n';
  if (const auto mean = totals.deltaE.Value()) {
    std::cout << "delta-E ITP             mean " << *mean << ", largest " << totals.maxDeltaE
              << "\n  worst frame           " << totals.worstFrame << ", mean "
              << totals.largestMean << '\n';
  }
  if (totals.pqError.Value()) {
    std::cout << "PSNR, PQ of BT.2020     " << PsnrText(totals.pqError) << '\n';
  }
  if (totals.ownError.Value()) {
    std::cout << "PSNR, own signal        " << PsnrText(totals.ownError) << '\n';
  }
}

void NoteRest(const CompareOptions& options, ComparedClip& longer, const Totals& totals) {
  if (options.quiet) return;
  std::cerr << "note: " << longer.Path().string() << " goes on after the "
            << Counted(totals.frames, "frame") << " of the other; they alone are compared\n";
}

/// Compares all pairs. Nothing where there are none.
std::optional<WorstPair> CompareAll(const CompareOptions& options, ComparedClip& a, ComparedClip& b,
                                    Totals& totals) {
  const InterruptGuard interrupt;
  Progress progress(options.quiet ? ProgressStyle::None : ProgressStyle::Auto, "compare",
                    std::min(a.Frames(), b.Frames()));
  std::optional<WorstPair> worst;
  for (;;) {
    auto pictureA = a.Next();
    auto pictureB = b.Next();
    if (pictureA && !pictureB) NoteRest(options, a, totals);
    if (!pictureA && pictureB) NoteRest(options, b, totals);
    if (!pictureA || !pictureB) return worst;
    if (interrupt.IsInterrupted()) {
      throw CommandError(interrupt.Code(), "comparing was stopped");
    }
    Comparison comparison = ComparePictures(pictureA->frame, pictureB->frame, options.settings);
    Add(options, comparison, totals);
    progress.Update([&totals] {
      return ProgressStep{totals.frames - 1, totals.frames, {}, {}, {}};
    });
    const double mean = comparison.deltaEFigures ? comparison.deltaEFigures->mean : 0.0;
    if (mean <= totals.largestMean) continue;
    totals.largestMean = mean;
    totals.worstFrame = totals.frames - 1;
    worst = WorstPair{std::move(*pictureA), std::move(*pictureB), std::move(comparison)};
  }
}

}  // namespace

void CompareClips(const CompareOptions& options) {
  ComparedClip a(options.a, "-a", options.maxPixels, options.settings.white);
  ComparedClip b(options.b, "-b", options.maxPixels, options.settings.white);
  Totals totals;
  const auto worst = CompareAll(options, a, b, totals);
  if (worst) WriteCompareView(options, worst->comparison, worst->a.frame, worst->b.frame);
  const std::string json = Json(a, b, totals);
  WriteCompareJson(options, json);
  if (options.PrintsJson()) {
    std::cout << json;
  } else if (!options.quiet) {
    Print(a, b, totals);
  }
}

}  // namespace Quillon::Cli
