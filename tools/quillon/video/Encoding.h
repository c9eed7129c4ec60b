#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "refhost/kestrel/PixelFormats.h"
#include "tools/quillon/process/Choice.h"
#include "tools/quillon/video/ClipTags.h"

namespace Quillon::Cli {

enum class VideoCodec { H264, Hevc, Av1, Ffv1, ProRes };

inline constexpr std::array<Choice<VideoCodec>, 5> kVideoCodecs = {{
    {"h264", VideoCodec::H264},
    {"hevc", VideoCodec::Hevc},
    {"av1", VideoCodec::Av1},
    {"ffv1", VideoCodec::Ffv1},
    {"prores", VideoCodec::ProRes},
}};

/// Samples of an encoded clip.
enum class Sampling { C420, C422, C444, Rgb };

inline constexpr std::array<Choice<Sampling>, 4> kSamplings = {{
    {"420", Sampling::C420},
    {"422", Sampling::C422},
    {"444", Sampling::C444},
    {"rgb", Sampling::Rgb},
}};

/// How a clip is to be encoded, as far as was asked.
struct EncodingWishes {
  std::optional<VideoCodec> codec;
  std::optional<Sampling> sampling;
  std::optional<int> bits;
  std::optional<double> quality;  ///< constant rate factor
  std::optional<std::string> preset;
};

/// How a clip is encoded.
struct Encoding {
  VideoCodec codec = VideoCodec::H264;
  AVPixelFormat pixelFormat = AV_PIX_FMT_NONE;
  std::optional<double> quality;
  std::string preset;  ///< empty: the encoder has none
  /// Of the result; matrix, range and chroma location are those of the samples.
  ClipTags tags;
  int width = 0;
  int height = 0;
  AVRational timeBase{1, 25};
  AVRational frameRate{0, 1};
  AVRational sampleAspect{0, 1};
};

/// What the source gives an encoding where nothing was asked.
struct SourceSamples {
  Sampling sampling = Sampling::C420;
  int bits = 8;
  bool oddSize = false;  ///< width or height
};

/// Settles codec, samples, quality and preset for `tags`, which get the matrix and range that fit
/// the samples. Without a wish: HEVC for PQ and HLG, else H.264; AV1 in WebM, ProRes never of
/// itself. 4:2:0, for odd sizes 4:4:4 (ProRes 4:2:2, FFV1 the source's); 10 bits for PQ and HLG, 8
/// otherwise (ProRes 10, FFV1 the source's or more). Throws CommandError for what the encoder or
/// the container of `output` cannot do.
Encoding SettleEncoding(const EncodingWishes& wishes, const SourceSamples& source,
                        const ClipTags& tags, const std::filesystem::path& output);

/// An encoder at work. Not for several threads at a time.
class Encoder {
 public:
  /// Opens it. Throws CommandError, as when this FFmpeg was built without it; `output` is for
  /// messages.
  Encoder(const Encoding& encoding, bool globalHeader, const std::filesystem::path& output);
  ~Encoder();
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;

  const AVCodecContext& Context() const { return *context_; }
  /// Null: no more come, which may be said again. Throws CommandError.
  void Send(const AVFrame* frame);
  /// False where it wants another frame first, or has given all. Throws CommandError, also where
  /// it ended without having given a packet for each frame.
  bool Receive(AVPacket& packet);

 private:
  void Open(const Encoding& encoding, bool globalHeader);
  void FeedOne();
  [[noreturn]] void Fail(int result) const;

  std::filesystem::path output_;
  AvCodecPtr context_;
  bool waitsForFirst_ = false;  ///< can be neither ended nor closed before its first frame
  bool ended_ = false;
  std::int64_t owed_ = 0;  ///< packets
};

}  // namespace Quillon::Cli
