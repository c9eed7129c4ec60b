#pragma once

#include <memory>

#include "tools/quillon/clip/PartialClip.h"
#include "tools/quillon/video/ClipInput.h"

extern "C" {
#include <libavcodec/bsf.h>
}

namespace Quillon::Cli {

struct FreeAvBitstreamFilter {
  void operator()(AVBSFContext* context) const { av_bsf_free(&context); }
};

/// Reads the encoded frames of an earlier run again, in the form in which encoders give them:
/// H.264 and H.265 with start codes, which containers take out.
class EarlierFrames {
 public:
  /// Time stamps are moved so that the first frame is shown at `firstPts`: containers may have
  /// moved them. Throws CommandError.
  EarlierFrames(const EncodedFrames& frames, std::int64_t firstPts, AVRational timeBase);

  /// The next packet; null after the last.
  const AVPacket* Next() const { return left_ > 0 ? packet_.get() : nullptr; }
  AVRational TimeBase() const { return input_.video->time_base; }
  void Advance();

 private:
  void OpenStartCodes();
  void Read();

  ClipInput input_;
  std::unique_ptr<AVBSFContext, FreeAvBitstreamFilter> startCodes_;  ///< null: none needed
  AvPacketPtr packet_;
  std::int64_t left_;
  std::int64_t shift_;
};

}  // namespace Quillon::Cli
