#pragma once

#include "tools/quillon/clip/PictureSource.h"
#include "tools/quillon/video/AvPictures.h"

struct SwsContext;

namespace Quillon::Cli {

/// The pictures of a clip. Samples that the host has no format for are converted to the nearest
/// that it has.
class ClipSource : public PictureSource {
 public:
  ClipSource(const std::filesystem::path& path, const FrameIndex* index, std::int64_t first,
             DamagePolicy policy, std::int64_t maxPixels);

  const ClipInfo& Info() const override { return reader_.Info(); }
  SourceSamples Samples() const override;
  AVRational TimeBase() const override { return reader_.TimeBase(); }
  const ClipInput* Input() const override { return &reader_.Input(); }
  std::optional<SourceItem> NextItem() override;
  SourcePacket NextPacket(double until) override { return reader_.NextPacket(until); }
  ClipDamage Damage() const override { return reader_.Damage(); }
  void CountDamage(const std::function<bool()>& isStopped) override {
    if (Damage().places > 0) reader_.CountDamage(isStopped);
  }

 private:
  std::shared_ptr<const AVFrame> InHostFormat(std::shared_ptr<const AVFrame> frame);
  ClipPicture Show(const ClipFrame& frame);
  std::int64_t TimeOf(std::int64_t number) const;
  void RequireSameSize(const ClipFrame& frame) const;

  std::filesystem::path path_;
  ClipReader reader_;
  std::unique_ptr<SwsContext, void (*)(SwsContext*)> scaler_;
  std::optional<AvFramePool> converted_;
};

}  // namespace Quillon::Cli
