#include "tools/quillon/map/ClipRun.h"

#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/clip/ClipSink.h"
#include "tools/quillon/clip/FileIdentity.h"
#include "tools/quillon/clip/MeasureClip.h"
#include "tools/quillon/clip/SequenceSink.h"
#include "tools/quillon/io/NameBeside.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/map/ExplainClip.h"
#include "tools/quillon/map/ResultTags.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Explain.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/MapPicture.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

namespace {

constexpr int kRateDenominator = 1001000;
constexpr int kFloatBits = 32;

AVRational SequenceRate(const MapOptions& options) {
  constexpr double kDefault = 24.0;
  return av_d2q(options.clip.sequenceRate.value_or(kDefault), kRateDenominator);
}

[[noreturn]] void Refuse(const std::string& sentence) {
  throw CommandError(ExitCode::Usage, sentence);
}

void CheckOptions(const MapOptions& options) {
  const ClipOptions& clip = options.clip;
  const bool sequenceIn = InputSequence(options.input).has_value();
  if (clip.sequenceRate && !sequenceIn) {
    Refuse("--fps is for image sequences; a clip keeps its own times");
  }
  if (clip.keepDamaged && sequenceIn) {
    Refuse("--keep-damaged is for clips; a damaged picture of a sequence is not read");
  }
  if (clip.frames && clip.chunk) Refuse("give either --frames or --chunk");
  if (!SequenceName::Parse(options.output)) return;
  const bool encodes = clip.encoding.codec || clip.encoding.sampling || clip.encoding.quality ||
                       clip.encoding.preset;
  if (encodes) {
    Refuse(clip.FirstGiven() + " has no effect on image sequences; leave it out");
  }
}

/// RGB has no subsampled components.
void CheckMatrix(const MapOptions& options, const PictureSource& source) {
  const SourceOverride& given = options.mapping.source;
  if (!given.tellsMatrix || !given.colors) return;
  if (given.colors->matrix != RefHost::kMatrixIdentity) return;
  const Sampling sampling = source.Samples().sampling;
  if (sampling != Sampling::C420 && sampling != Sampling::C422) return;
  Refuse(
      options.input.string() +
      ": its samples are YCbCr, and the matrix 0 of --from-cicp says RGB; give the matrix of the "
      "samples, as 9 for BT.2020");
}

void CheckClipTarget(const MapOptions& options) {
  if (NamesClip(options.output)) return CheckTargetFile(options.output, options.overwrite);
  const std::string extension = LowerCaseExtension(options.output);
  throw CommandError(ExitCode::NotSupported,
                     options.output.string() + ": the extension \"" + extension +
                         "\" names no clip that is written; choose .mp4, .mov, .mkv or .webm, or "
                         "an image sequence such as frame.%05d.png");
}

void CheckSequenceTarget(const MapOptions& options, const SequenceName& name) {
  CheckStillTarget(name.FileOf(0), true);
  const auto existing = name.ExistingNumbers();
  if (existing.empty() || options.overwrite || options.clip.resume) return;
  throw CommandError(ExitCode::CannotWrite,
                     name.FileOf(existing.front()).string() +
                         ": pictures of this sequence exist already (" +
                         std::to_string(existing.size()) +
                         "); choose another name or give --overwrite or --resume");
}

void CheckTarget(const MapOptions& options) {
  if (const auto name = SequenceName::Parse(options.output)) {
    CheckSequenceTarget(options, *name);
  } else {
    CheckClipTarget(options);
  }
}

DamagePolicy PolicyOf(const MapOptions& options) {
  return options.clip.keepDamaged ? DamagePolicy::GoOn : DamagePolicy::Stop;
}

std::int64_t CountFrames(ClipRun& run, const MapOptions& options, std::ostream& notes) {
  if (const auto name = InputSequence(options.input)) {
    return static_cast<std::int64_t>(name->ExistingNumbers().size());
  }
  run.index = FrameIndex::Scan(options.input, options.maxPixels);
  const ClipDamage& damage = run.index->Damage();
  if (damage.places > 0) {
    const std::string what = options.input.string() + ": it is damaged: " + damage.first;
    if (!options.clip.keepDamaged) {
      throw CommandError(ExitCode::CannotRead,
                         what +
                             "; its frames cannot be counted; --keep-damaged counts those there "
                             "are");
    }
    if (!options.quiet) notes << "note: " << what << '\n';
  }
  return run.index->Count();
}

/// The frames that were asked for, within the clip.
FrameSelection Select(const MapOptions& options, std::int64_t frames) {
  const ClipOptions& clip = options.clip;
  const std::string has = options.input.string() + " has " + std::to_string(frames) + " frames; ";
  if (clip.chunk) {
    const auto range = RangeOf(*clip.chunk, frames);
    if (!range) Refuse(has + "--chunk cuts it into more parts than that");
    return FrameSelection({*range});
  }
  if (!clip.frames) return {};
  const std::int64_t last = clip.frames->back().last;
  if (last >= frames) {
    Refuse(has + "--frames goes to " + std::to_string(last) + ", the last is " +
           std::to_string(frames - 1));
  }
  return FrameSelection(*clip.frames);
}

/// What of an earlier run can be used: of its two files the one that holds more.
EncodedFrames FindEarlier(const MapOptions& options) {
  const PartialClip files(options.output);
  const EncodedFrames last = FindWholeGroups(files.clip);
  const EncodedFrames before = FindWholeGroups(files.earlier);
  return last.count >= before.count ? last : before;
}

void RequireSameSettings(const MapOptions& options, const ClipRun& run) {
  const PartialClip files(options.output);
  const auto earlier = files.ReadNote();
  if (earlier && *earlier == run.settings) return;
  throw CommandError(ExitCode::Usage,
                     files.clip.string() +
                         " was made with other settings or from another version of the input; "
                         "give the same options as then, or begin anew without --resume");
}

/// A file of that name that no run of this program left is not to be lost.
void CheckPartialNames(const MapOptions& options) {
  const PartialClip files(options.output);
  if (options.overwrite || files.ReadNote()) return;
  for (const auto& path : {files.clip, files.earlier}) {
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) continue;
    throw CommandError(ExitCode::CannotWrite,
                       path.string() +
                           ": this name is needed while the clip is written; "
                           "move the file away or give --overwrite");
  }
}

/// Runs that write other pictures of one sequence do not get in each other's way.
std::unique_ptr<OutputLock> LockOutput(const MapOptions& options, const ClipRun& run) {
  if (!SequenceName::Parse(options.output)) {
    return std::make_unique<OutputLock>(options.output, PartialClip(options.output).lock);
  }
  return std::make_unique<OutputLock>(
      options.output, NameBeside(options.output, options.output.filename().string(), ".lock"),
      run.selection.First(), run.selection.Last().value_or(-1));
}

/// Whether peak or exposure of pictures that are tagged so have to be measured.
bool NeedsMeasuring(const MapOptions& options, const Mapper::Source& tagged) {
  bool measures = false;
  ChooseSourcePeak(options.mapping.peak, options.input, tagged, PictureKind::Clip,
                   options.mapping.settings.white, [&measures] {
                     measures = true;
                     return 0.0;
                   });
  const auto& exposure = options.mapping.exposure;
  return measures || (exposure && exposure->automatic);
}

std::optional<ClipLevels> MeasureWhereNeeded(const MapOptions& options, const ClipTags& tags,
                                             std::ostream& notes) {
  const auto colorsOf = [&options](const ClipTags& of) {
    return TaggedColors(options.input, of.colors, options.mapping.source);
  };
  if (!NeedsMeasuring(options, {colorsOf(tags), tags.light})) return std::nullopt;
  MeasureRequest request;
  request.clip = options.input;
  request.sequenceRate = SequenceRate(options);
  request.white = options.mapping.settings.white;
  request.percent = options.mapping.peak.percent;
  request.maxPixels = options.maxPixels;
  request.progress =
      options.quiet ? ProgressStyle::None : options.clip.progress.value_or(ProgressStyle::Auto);
  request.policy = PolicyOf(options);
  request.colorsOf = colorsOf;
  return LevelsOfClip(request, notes);
}

AVRational SampleAspectOf(const ClipRun& run) {
  const ClipInput* input = run.source->Input();
  if (input == nullptr) return {0, 1};
  return av_guess_sample_aspect_ratio(input->container.get(), input->video, nullptr);
}

Encoding EncodingOf(const MapOptions& options, const ClipRun& run) {
  const ClipInfo& info = run.source->Info();
  EncodingWishes wishes = options.clip.encoding;
  wishes.bits = options.depth;
  const ClipTags tags =
      ResultTags(options.mapping.target.colors, run.mapper->Plan().Decide().destinationPeakNits,
                 info.tags, run.mapper->KnownLight());
  SourceSamples samples = run.source->Samples();
  samples.oddSize = info.width % 2 != 0 || info.height % 2 != 0;
  Encoding encoding = SettleEncoding(wishes, samples, tags, options.output);
  encoding.width = info.width;
  encoding.height = info.height;
  encoding.timeBase = run.source->TimeBase();
  encoding.frameRate = info.frameRate;
  encoding.sampleAspect = SampleAspectOf(run);
  return encoding;
}

std::string SettingsText(const MapOptions& options, const ClipRun& run) {
  std::ostringstream text;
  text << options.input.string() << " (" << FileIdentity(options.input) << ")\n";
  for (const FrameRange& range : run.selection.Ranges()) {
    text << "frames " << range.first << '-' << range.last << '\n';
  }
  Explain(text, run.mapper->Plan().Decide());
  ExplainClip(text, run);
  return text.str();
}

std::int64_t PtsOfFirst(const ClipRun& run) {
  const std::int64_t first = run.selection.First();
  const auto pts = run.index ? run.index->PtsOf(first) : std::optional(first);
  return TimesOf(run).Moved(first, pts.value_or(first));
}

}  // namespace

ClipRun PrepareClipRun(const MapOptions& options, std::ostream& notes) {
  CheckOptions(options);
  if (!options.clip.dryRun) CheckTarget(options);
  const bool clipOut = !SequenceName::Parse(options.output).has_value();

  ClipRun run;
  const bool bySingleFrames = options.clip.frames || options.clip.chunk || options.clip.resume;
  if (bySingleFrames) run.frames = CountFrames(run, options, notes);
  run.selection = Select(options, run.frames);
  if (!options.clip.dryRun) {
    run.lock = LockOutput(options, run);
    CheckTarget(options);  // who had the lock before may have finished
    if (clipOut) CheckPartialNames(options);
  }
  run.left = run.selection;
  if (options.clip.resume && clipOut) {
    run.earlier = FindEarlier(options);
    if (run.earlier.count > 0) run.left = run.selection.Without(run.earlier.count, run.frames);
  }
  run.source = OpenPictures(options.input, SequenceRate(options), run.index ? &*run.index : nullptr,
                            run.left.First(), PolicyOf(options), options.maxPixels);
  CheckMatrix(options, *run.source);
  const ClipInfo& info = run.source->Info();
  RefuseGammaOfFloats(options.input, info.tags.colors, info.bits == kFloatBits,
                      options.mapping.source);
  const ClipTags& tags = run.source->Info().tags;
  if (!bySingleFrames) run.frames = run.source->Info().frames;
  run.mapper =
      std::make_unique<ClipMapper>(options, tags, MeasureWhereNeeded(options, tags, notes));
  if (clipOut) run.encoding = EncodingOf(options, run);
  run.settings = SettingsText(options, run);
  if (run.earlier.count > 0) RequireSameSettings(options, run);
  return run;
}

OutputTimes TimesOf(const ClipRun& run) {
  const auto ptsOf = [&run](std::int64_t frame) -> std::optional<std::int64_t> {
    if (run.index) return run.index->PtsOf(frame);
    return frame < run.frames ? std::optional(frame) : std::nullopt;
  };
  return {run.selection, ptsOf, run.source->TimeBase()};
}

std::unique_ptr<PictureSink> MakeSink(const MapOptions& options, const ClipRun& run) {
  if (run.encoding) {
    const ClipInput* passOn = TimesOf(run).PassesOn() ? run.source->Input() : nullptr;
    return std::make_unique<ClipSink>(options.output, options.overwrite, *run.encoding, passOn,
                                      run.settings, run.earlier, PtsOfFirst(run));
  }
  auto name = SequenceName::Parse(options.output);
  if (!name) throw std::logic_error("a run without an encoding writes a sequence");
  StillOutput still;
  still.settings = ColorManagementFor(options.mapping.settings.white);
  still.depth = options.depth;
  still.overwrite = options.overwrite;
  const ClipInfo& info = run.source->Info();
  return std::make_unique<SequenceSink>(std::move(*name), info.width, info.height,
                                        Mapper::DestinationColorSpace(run.mapper->Plan()), still,
                                        options.clip.resume);
}

}  // namespace Quillon::Cli
