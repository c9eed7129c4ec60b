#include "tools/quillon/clip/MeasureClip.h"

#include "tools/quillon/io/StillError.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/picture/SceneLight.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/process/Interrupt.h"
#include "tools/quillon/process/Words.h"

namespace Quillon::Cli {

namespace {

void Keep(const MeasureRequest& request, const ClipLevels& levels, std::ostream& notes) {
  try {
    SaveLevels(request.clip, levels);
  } catch (const StillError& error) {
    notes << "note: the measured levels are not kept for the next run: " << error.what() << '\n';
  }
}

}  // namespace

ClipLevels LevelsOfClip(const MeasureRequest& request, std::ostream& notes) {
  const auto source = OpenPictures(request.clip, request.sequenceRate, nullptr, 0, request.policy,
                                   request.maxPixels);
  const bool isSequence = source->Input() == nullptr;
  const std::string name = DescribeColorSpace(request.colorsOf(source->Info().tags));
  if (!isSequence) {
    if (auto kept = LoadLevels(request.clip, name, request.white, request.percent)) return *kept;
  }

  const InterruptGuard interrupt;
  Progress progress(request.progress, "measure", source->Info().frames);
  LevelMeter meter(request.white, request.percent);
  ClipLevels levels{name, request.white, request.percent, {}};
  ProgressStep step;
  while (const auto next = source->Next()) {
    // NOLINTNEXTLINE(bugprone-unchecked-optional-access): the loop checks it
    const ClipPicture& picture = *next;
    if (interrupt.IsInterrupted()) {
      throw CommandError(interrupt.Code(), request.clip.string() + ": measuring was stopped");
    }
    TagPicture(picture.frame, request.colorsOf(picture.tags), picture.tags.whiteNits,
               request.white);
    levels.frames.push_back(meter.Measure(picture.frame));
    step = {picture.number, picture.number + 1, levels.frames.back().peak, {}, {}};
    progress.Update([&step] { return step; });
  }
  progress.Finish(step);
  const ClipDamage damage = source->Damage();
  if (damage.places > 0 && request.policy == DamagePolicy::Stop) {
    throw CommandError(ExitCode::CannotRead,
                       request.clip.string() + ": it is damaged: " + damage.first + "; " +
                           Counted(step.done, "frame") + " before it measured");
  }
  if (!isSequence && damage.places == 0) Keep(request, levels, notes);
  return levels;
}

}  // namespace Quillon::Cli
