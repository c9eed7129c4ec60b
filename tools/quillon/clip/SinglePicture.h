#pragma once

#include "tools/quillon/clip/PictureSource.h"

namespace Quillon::Cli {

/// A still as a clip of one picture.
class SinglePicture : public PictureSource {
 public:
  SinglePicture(const std::filesystem::path& path, std::int64_t maxPixels);

  const ClipInfo& Info() const override { return info_; }
  SourceSamples Samples() const override { return {Sampling::C444, info_.bits, false}; }
  AVRational TimeBase() const override { return {1, 1}; }
  std::optional<SourceItem> NextItem() override;

 private:
  std::optional<ClipPicture> picture_;
  ClipInfo info_;
};

}  // namespace Quillon::Cli
