#pragma once

#include <cstdint>
#include <string>

#include "tools/quillon/video/ClipInput.h"
#include "tools/quillon/video/ClipTags.h"

namespace Quillon::Cli {

/// What a clip is, as far as its head and its first frame tell.
struct ClipInfo {
  std::string container;    ///< FFmpeg's names, as "mov,mp4,m4a,3gp,3g2,mj2"
  std::string codec;        ///< as "hevc"
  std::string pixelFormat;  ///< as "yuv420p10le"
  int width = 0;
  int height = 0;
  int bits = 0;
  AVRational frameRate{0, 1};  ///< on average; 0: not told
  double seconds = 0.0;        ///< 0: not told
  std::int64_t frames = 0;     ///< as the container says, or guessed from rate and duration
  int rotation = 0;            ///< degrees clockwise that players turn it by
  std::string audio;           ///< codecs of the other streams, as "aac, ac3"
  /// Metadata of each picture's own that is not applied: "Dolby Vision", "HDR10+", or both.
  std::string dynamicMetadata;
  ClipTags tags;
};

/// Of an open clip and its first frame.
ClipInfo DescribeClip(const ClipInput& input, const AVFrame& first);

}  // namespace Quillon::Cli
