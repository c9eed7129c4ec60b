#pragma once

#include <memory>
#include <optional>

#include "host/pavix/IVideoFrame.h"
#include "refhost/kestrel/PixelFormats.h"
#include "tools/quillon/video/AvHandles.h"

namespace Quillon::Cli {

/// FFmpeg's frames as the host's.

/// How the samples of a pixel format lie, where the host has a format for them: planar or
/// semi-planar YCbCr and planar RGB of 8, 10, 12 or 16 bits in the machine's byte order.
struct AvLayout {
  bool semiPlanar = false;
  RefHost::ChromaFormat chroma = RefHost::ChromaFormat::C420;
  int bits = 8;

  orvmediatypes::PixelFormat Format() const;
};
std::optional<AvLayout> LayoutOf(AVPixelFormat format);

/// The format to convert a frame to that the host has no format for: as many chroma samples and at
/// least as many bits, without alpha. AV_PIX_FMT_NONE where there is none (float samples).
AVPixelFormat NearestLayout(AVPixelFormat format);

/// The host's frame over the samples of `frame`, which it keeps alive. Rows that run upwards are
/// not shown. Empty where the host has no format for it.
PX::VideoFrameRef ShowAvFrame(const std::shared_ptr<const AVFrame>& frame,
                              const orvmediatypes::color::ColorSpace& colorSpace);

/// New frames of one size and format, their memory used again.
class AvFramePool {
 public:
  AvFramePool(AVPixelFormat format, int width, int height);

  AVPixelFormat Format() const { return format_; }
  /// Contents undefined. Throws std::bad_alloc.
  std::shared_ptr<AVFrame> Take();

 private:
  AVPixelFormat format_;
  int width_;
  int height_;
  AvBufferPoolPtr pool_;
};

}  // namespace Quillon::Cli
