#pragma once

#include "tools/quillon/clip/PictureSource.h"

namespace Quillon::Cli {

/// The stills of an image sequence, in the order of their numbers.
class SequenceSource : public PictureSource {
 public:
  SequenceSource(SequenceName name, AVRational rate, std::int64_t first, std::int64_t maxPixels);

  const ClipInfo& Info() const override { return info_; }
  SourceSamples Samples() const override;
  AVRational TimeBase() const override { return av_inv_q(info_.frameRate); }
  std::optional<SourceItem> NextItem() override;

 private:
  ClipPicture Read(std::int64_t position) const;

  SequenceName name_;
  std::vector<std::int64_t> numbers_;
  std::int64_t next_;
  std::int64_t maxPixels_;
  std::optional<ClipPicture> ahead_;
  ClipInfo info_;
};

}  // namespace Quillon::Cli
