#pragma once

#include "tools/quillon/clip/EarlierFrames.h"
#include "tools/quillon/clip/PartialClip.h"
#include "tools/quillon/clip/PictureSink.h"
#include "tools/quillon/video/AvPictures.h"
#include "tools/quillon/video/ClipWriter.h"

namespace Quillon::Cli {

/// Writes a clip under a temporary name, and renames it when it is whole.
class ClipSink : public PictureSink {
 public:
  /// `settings` is all that shapes the output, as text. The frames of `earlier`, a clip of an
  /// earlier run, come first, the first of them at `firstPts`; without any, what an earlier run
  /// left is removed. The caller holds the output's lock. Throws CommandError or StillError; the
  /// files are then what they were, or gone.
  ClipSink(const std::filesystem::path& output, bool overwrite, const Encoding& encoding,
           const ClipInput* passOn, const std::string& settings, const EncodedFrames& earlier,
           std::int64_t firstPts);

  std::vector<std::string> Remarks() const override { return writer_->Remarks(); }
  MappedPicture NewPicture() override;
  void Write(MappedPicture picture, const ClipPicture& source) override;
  void PassOn(const AVPacket& packet) override;
  void Flush() override;
  ClipDamage Refused() const override { return writer_->Refused(); }
  void Finish() override;
  std::string Abandon(bool atOnce) override;

 private:
  void Begin(const std::string& settings, const EncodedFrames& earlier, std::int64_t firstPts);
  void Rewrite();
  /// Takes back what was begun.
  void RemoveBegun();
  /// Frames in the file, as far as they are whole.
  std::int64_t FramesLeft() const;
  /// Writes the earlier frames that are decoded before a time, in seconds.
  void WriteEarlier(double until);

  PartialClip files_;
  bool overwrite_;
  Encoding encoding_;
  AvFramePool pool_;
  std::unique_ptr<ClipWriter> writer_;
  const ClipInput* passOn_;
  bool resumes_;
  std::unique_ptr<EarlierFrames> earlier_;
  std::int64_t lastPts_;
  bool holdsAll_ = false;  ///< but has not its form yet
};

}  // namespace Quillon::Cli
