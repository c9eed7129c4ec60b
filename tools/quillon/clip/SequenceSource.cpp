#include "tools/quillon/clip/SequenceSource.h"

#include <utility>

#include "refhost/kestrel/PixelFormats.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

SequenceSource::SequenceSource(SequenceName name, AVRational rate, std::int64_t first,
                               std::int64_t maxPixels)
    : name_(std::move(name)),
      numbers_(name_.ExistingNumbers()),
      next_(first),
      maxPixels_(maxPixels) {
  if (next_ >= static_cast<std::int64_t>(numbers_.size())) {
    throw CommandError(ExitCode::CannotRead, name_.FileOf(first).string() +
                                                 ": the sequence has no such picture; check name "
                                                 "and number");
  }
  ahead_ = Read(next_++);
  const orvcore::geom::Bounds bounds = ahead_->frame->GetBounds();
  const auto format = RefHost::DescribeFormat(ahead_->frame->GetPixelFormat());
  info_.container = "image sequence";
  info_.codec = name_.FileOf(numbers_.front()).extension().string().substr(1);
  info_.pixelFormat = "as the stills";
  info_.width = bounds.width;
  info_.height = bounds.height;
  info_.bits = format ? format->bits : 0;
  info_.frameRate = rate;
  info_.frames = static_cast<std::int64_t>(numbers_.size());
  info_.seconds = static_cast<double>(info_.frames) / av_q2d(rate);
  info_.tags = ahead_->tags;
}

SourceSamples SequenceSource::Samples() const {
  return {Sampling::C444, info_.bits <= 8 ? 8 : 16, false};
}

ClipPicture SequenceSource::Read(std::int64_t position) const {
  const Still still =
      ReadStill(name_.FileOf(numbers_[static_cast<std::size_t>(position)]), maxPixels_);
  ClipPicture picture;
  picture.frame = still.frame;
  picture.tags = {still.frame->GetColorSpace().Description(), still.light, still.whiteNits};
  picture.number = position;
  picture.pts = position;
  return picture;
}

std::optional<SourceItem> SequenceSource::NextItem() {
  std::optional<ClipPicture> picture = std::exchange(ahead_, std::nullopt);
  if (picture || next_ >= static_cast<std::int64_t>(numbers_.size())) return picture;
  picture = Read(next_++);
  const orvcore::geom::Bounds bounds = picture->frame->GetBounds();
  if (bounds.width == info_.width && bounds.height == info_.height) return picture;
  throw CommandError(ExitCode::NotSupported,
                     name_.FileOf(numbers_[static_cast<std::size_t>(picture->number)]).string() +
                         ": it is " + std::to_string(bounds.width) + "x" +
                         std::to_string(bounds.height) + " where the sequence began as " +
                         std::to_string(info_.width) + "x" + std::to_string(info_.height) +
                         "; map the parts apart");
}

}  // namespace Quillon::Cli
