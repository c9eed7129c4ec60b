#include "tools/quillon/map/MapClip.h"

#include <chrono>
#include <exception>
#include <optional>

#include "tools/quillon/clip/Pipeline.h"
#include "tools/quillon/map/ClipRun.h"
#include "tools/quillon/map/ExplainClip.h"
#include "tools/quillon/map/SamplePeak.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Explain.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/process/Interrupt.h"
#include "tools/quillon/process/Words.h"

namespace Quillon::Cli {

namespace {

void NoteWhatMatters(const MapOptions& options, const ClipRun& run, const PictureSink& sink,
                     std::ostream& notes) {
  if (options.quiet) return;
  for (const std::string& remark : sink.Remarks()) notes << "note: " << remark << '\n';
  const std::string& dynamic = run.source->Info().dynamicMetadata;
  if (!dynamic.empty()) {
    notes << "note: the " << dynamic << " metadata is neither applied nor passed on\n";
  }
  const Mapper::Decisions decisions = run.mapper->Plan().Decide();
  const ClipTags& tags = run.source->Info().tags;
  WarnOfLight(notes, {tags.colors, tags.light}, decisions);
  NoteOptionsWithoutEffect(notes, options.mapping, decisions);
  if (!TimesOf(run).PassesOn()) {
    notes << "note: sound and the other streams are left out, since --frames picks frames that do "
             "not follow each other\n";
  }
  if (options.clip.resume) {
    notes << "note: taken over from an earlier run: " << Counted(run.earlier.count, "frame")
          << '\n';
  }
}

/// Closes the output and says what is left of it. What fails while closing is not told: it follows
/// from what went wrong before.
std::string Abandon(PictureSink& sink, bool atOnce) {
  try {
    const std::string left = sink.Abandon(atOnce);
    return left.empty() ? std::string() : "; " + left;
  } catch (const std::exception&) {
    return {};
  }
}

/// Maps all pictures. False where it was interrupted.
bool MapPictures(const MapOptions& options, ClipRun& run, PictureSink& sink,
                 const InterruptGuard& interrupt, std::int64_t& done) {
  const auto style = options.clip.progress.value_or(ProgressStyle::Auto);
  Progress progress(options.quiet ? ProgressStyle::None : style, "map",
                    run.left.CountOf(run.frames));
  const OutputTimes times = TimesOf(run);
  ClipMapper& mapper = *run.mapper;
  ProgressStep last;
  const auto map = [&](const ClipPicture& from, PX::VideoFrameRef& to) {
    mapper.Map(from, to);
    ++done;
    progress.Update([&] {
      ProgressStep step{from.number, done, mapper.PeakOf(from.number), {}, mapper.Doing()};
      if (!step.peakNits)
        step.sampledPeakNits = SamplePeak(from.frame, options.mapping.settings.white);
      return step;
    });
    last.frame = from.number;
  };
  const bool complete =
      RunPipeline({*run.source, sink, run.left, times, map, !options.clip.keepDamaged,
                   [&interrupt] { return interrupt.IsInterrupted(); }});
  last.done = done;
  progress.Finish(last);
  return complete && !interrupt.IsInterrupted();
}

/// All damage of the source, that of the streams that are passed on included.
ClipDamage FindDamage(ClipRun& run, PictureSink& sink, const InterruptGuard& interrupt) {
  sink.Flush();
  run.source->CountDamage([&interrupt] { return interrupt.IsInterrupted(); });
  ClipDamage damage = run.source->Damage();
  const ClipDamage refused = sink.Refused();
  if (damage.places == 0) damage.first = refused.first;
  damage.places += refused.places;
  return damage;
}

void TellOfDamage(const MapOptions& options, const ClipDamage& damage, PictureSink& sink,
                  std::int64_t done, std::ostream& notes) {
  if (damage.places == 0) return;
  const std::string what = options.input.string() + ": it is damaged: " + damage.first + "; " +
                           Counted(damage.places, "damaged place") + " in all";
  if (options.clip.keepDamaged) {
    if (!options.quiet) notes << "note: " << what << '\n';
    return;
  }
  throw CommandError(ExitCode::CannotRead, what + "; " + Counted(done, "frame") +
                                               " before it mapped" + Abandon(sink, false) +
                                               "; --keep-damaged maps on");
}

[[noreturn]] void FailStopped(const MapOptions& options, PictureSink& sink,
                              const InterruptGuard& interrupt) {
  throw CommandError(interrupt.Code(), options.input.string() + ": stopped" + Abandon(sink, true) +
                                           "; --resume goes on from there");
}

/// Maps all pictures, and finds out whether they are all there.
void MapAll(const MapOptions& options, ClipRun& run, PictureSink& sink,
            const InterruptGuard& interrupt, std::int64_t& done, std::ostream& notes) {
  if (!MapPictures(options, run, sink, interrupt, done)) FailStopped(options, sink, interrupt);
  const ClipDamage damage = FindDamage(run, sink, interrupt);
  if (interrupt.IsInterrupted()) FailStopped(options, sink, interrupt);
  TellOfDamage(options, damage, sink, done, notes);
}

std::string ExposureText(const ClipRun& run) {
  const auto& exposure = run.mapper->ExposureOfClip();
  if (!exposure) return {};
  return ", exposure " + exposure->Describe(run.mapper->Plan().Decide().settings.white);
}

void Summarise(std::ostream& out, const MapOptions& options, const ClipRun& run, std::int64_t done,
               double seconds) {
  const Mapper::Decisions decisions = run.mapper->Plan().Decide();
  out << options.input.string() << " -> " << options.output.string() << ": "
      << Counted(done + run.earlier.count, "frame") << ", " << DescribeColorSpace(decisions.source)
      << ExposureText(run) << ", peak " << run.mapper->PeakText() << " ("
      << decisions.sourcePeak.origin << ") to " << DescribeColorSpace(options.mapping.target.colors)
      << ", peak " << decisions.destinationPeakNits << " nits; "
      << static_cast<double>(done) / seconds << " frames a second\n";
}

}  // namespace

void MapClip(const MapOptions& options, std::ostream& out, std::ostream& notes) {
  const auto begin = std::chrono::steady_clock::now();
  ClipRun run = PrepareClipRun(options, notes);
  // Whether it takes its options only the encoder tells.
  if (options.clip.dryRun && run.encoding)
    const Encoder opened(*run.encoding, false, options.output);
  if (options.explain || options.clip.dryRun) {
    Explain(out, run.mapper->Plan().Decide());
    ExplainClip(out, run);
  }
  if (options.clip.dryRun) return;

  std::optional<InterruptGuard> interrupt(std::in_place);
  const std::unique_ptr<PictureSink> sink = MakeSink(options, run);
  std::int64_t done = 0;
  try {
    NoteWhatMatters(options, run, *sink, notes);
    MapAll(options, run, *sink, *interrupt, done, notes);
    interrupt.reset();
    sink->Finish();
  } catch (const CommandError& error) {
    throw CommandError(error.Code(), error.what() + Abandon(*sink, true));
  } catch (...) {
    Abandon(*sink, true);
    throw;
  }
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  if (!options.quiet && !options.explain) Summarise(out, options, run, done, taken.count());
}

}  // namespace Quillon::Cli
