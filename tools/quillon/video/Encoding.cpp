#include "tools/quillon/video/Encoding.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <exception>
#include <limits>
#include <new>
#include <thread>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/process/ExitCodes.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace Quillon::Cli {

using orvmediatypes::color::Chromaticity;
using orvmediatypes::color::ColorDescription;

namespace {

/// One row an encoder. Empty: has no such option.
struct EncoderTraits {
  VideoCodec codec;
  AVCodecID id;
  const char* encoder;  ///< FFmpeg's name
  const char* qualityOption;
  double quality;
  const char* preset;
  const char* parameters;  ///< option that takes the encoder's own "name=value:..."
  int longestSide;         ///< in pixels
};

constexpr int kAnySide = std::numeric_limits<int>::max();

constexpr std::array<EncoderTraits, 5> kTraits = {{
    {VideoCodec::H264, AV_CODEC_ID_H264, "libx264", "crf", 18, "medium", "x264-params", 16384},
    {VideoCodec::Hevc, AV_CODEC_ID_HEVC, "libx265", "crf", 20, "medium", "x265-params", kAnySide},
    {VideoCodec::Av1, AV_CODEC_ID_AV1, "libsvtav1", "crf", 28, "8", "svtav1-params", kAnySide},
    {VideoCodec::Ffv1, AV_CODEC_ID_FFV1, "ffv1", "", 0, "", "", kAnySide},
    {VideoCodec::ProRes, AV_CODEC_ID_PRORES, "prores_ks", "", 0, "", "", kAnySide},
}};

/// Bits of a component that are converted to; encoders take others too.
constexpr std::array<int, 4> kBits = {8, 10, 12, 16};

const EncoderTraits& TraitsOf(VideoCodec codec) {
  return *std::find_if(kTraits.begin(), kTraits.end(),
                       [codec](const EncoderTraits& traits) { return traits.codec == codec; });
}

std::string NameOf(VideoCodec codec) {
  for (const auto& choice : kVideoCodecs) {
    if (choice.value == codec) return std::string(choice.name);
  }
  return {};
}

[[noreturn]] void Refuse(const std::string& sentence) {
  throw CommandError(ExitCode::NotSupported, sentence);
}

bool IsHdr(const ColorDescription& colors) {
  return colors.transfer == RefHost::kTransferPQ || colors.transfer == RefHost::kTransferHLG;
}

VideoCodec DefaultCodec(const ColorDescription& colors, const std::string& extension) {
  if (extension == ".webm") return VideoCodec::Av1;
  return IsHdr(colors) ? VideoCodec::Hevc : VideoCodec::H264;
}

Sampling DefaultSampling(VideoCodec codec, const SourceSamples& samples) {
  const Sampling source = samples.sampling;
  switch (codec) {
    case VideoCodec::Ffv1:
      return source;
    case VideoCodec::ProRes:
      return source == Sampling::C444 || source == Sampling::Rgb ? Sampling::C444 : Sampling::C422;
    default:
      return samples.oddSize ? Sampling::C444 : Sampling::C420;
  }
}

int DefaultBits(VideoCodec codec, Sampling sampling, const ColorDescription& colors, int source) {
  switch (codec) {
    case VideoCodec::Ffv1:
      if (sampling == Sampling::Rgb) source = std::max(source, 10);
      return source <= 8 ? 8 : source <= 10 ? 10 : source <= 12 ? 12 : 16;
    case VideoCodec::ProRes:
      return 10;
    default:
      return IsHdr(colors) ? 10 : 8;
  }
}

AVPixelFormat FormatOf(Sampling sampling, int bits) {
  static constexpr std::array<const char*, 4> kStems = {"yuv420p", "yuv422p", "yuv444p", "gbrp"};
  std::string name = kStems.at(static_cast<std::size_t>(sampling));
  if (bits > 8) name += std::to_string(bits) + "le";
  return av_get_pix_fmt(name.c_str());
}

const AVCodec& FindEncoder(VideoCodec codec) {
  const char* name = TraitsOf(codec).encoder;
  const AVCodec* encoder = avcodec_find_encoder_by_name(name);
  if (encoder == nullptr) {
    Refuse("this FFmpeg was built without " + std::string(name) + ", which --codec " +
           NameOf(codec) + " needs; choose another codec");
  }
  return *encoder;
}

bool Takes(const AVCodec& encoder, AVPixelFormat format) {
  for (const AVPixelFormat* f = encoder.pix_fmts; f != nullptr && *f != AV_PIX_FMT_NONE; ++f) {
    if (*f == format) return true;
  }
  return false;
}

/// Once an encoder's settings are taken, memory is what its library fails for without saying so.
bool IsLackOfMemory(int result) {
  return result == AVERROR(ENOMEM) || result == AVERROR(EAGAIN) || result == AVERROR_EXTERNAL;
}

/// What an encoder takes, for messages: "420 8, 420 10, 444 8".
std::string Takings(const AVCodec& encoder) {
  std::string list;
  for (const auto& sampling : kSamplings) {
    for (const int bits : kBits) {
      if (!Takes(encoder, FormatOf(sampling.value, bits))) continue;
      list += (list.empty() ? "" : ", ") + std::string(sampling.name) + " at " +
              std::to_string(bits) + " bits";
    }
  }
  return list;
}

AVPixelFormat SettleFormat(VideoCodec codec, Sampling sampling, int bits) {
  const AVCodec& encoder = FindEncoder(codec);
  const AVPixelFormat format = FormatOf(sampling, bits);
  const bool isKnown = std::find(kBits.begin(), kBits.end(), bits) != kBits.end();
  if (!isKnown || !Takes(encoder, format)) {
    Refuse(std::string(encoder.name) + " does not take " +
           std::string(kSamplings.at(static_cast<std::size_t>(sampling)).name) + " at " +
           std::to_string(bits) + " bits; choose --chroma and --depth among: " + Takings(encoder));
  }
  return format;
}

/// Whether a container takes a codec, as its muxer finds when it begins: what FFmpeg says of it
/// otherwise is not so of all pairs.
bool Holds(const AVOutputFormat& format, AVCodecID codec, const std::filesystem::path& output) {
  AVFormatContext* made = nullptr;
  if (avformat_alloc_output_context2(&made, &format, nullptr, output.string().c_str()) < 0) {
    throw std::bad_alloc();
  }
  const AvOutputPtr container(made);
  AVStream* stream = avformat_new_stream(made, nullptr);
  if (stream == nullptr) throw std::bad_alloc();
  if (avio_open(&made->pb, "file:/dev/null", AVIO_FLAG_WRITE) < 0) return true;
  constexpr int kSide = 64;
  stream->time_base = {1, 25};
  stream->codecpar->codec_type = AVMEDIA_TYPE_VIDEO;
  stream->codecpar->codec_id = codec;
  stream->codecpar->width = stream->codecpar->height = kSide;
  return avformat_init_output(made, nullptr) >= 0;
}

void RequireContainer(VideoCodec codec, const std::filesystem::path& output) {
  const AVOutputFormat* container = av_guess_format(nullptr, output.string().c_str(), nullptr);
  const AVCodecID id = TraitsOf(codec).id;
  if (container != nullptr && avformat_query_codec(container, id, FF_COMPLIANCE_NORMAL) == 1 &&
      Holds(*container, id, output)) {
    return;
  }
  Refuse(output.string() + ": " + LowerCaseExtension(output) + " files do not hold " +
         NameOf(codec) + "; name the output .mkv, or choose another --codec");
}

/// YCbCr by the matrix that goes with the primaries, in narrow range; R'G'B' in full range.
void FitColors(ColorDescription& colors, Sampling sampling) {
  colors.fullRange = sampling == Sampling::Rgb;
  if (sampling == Sampling::Rgb) {
    colors.matrix = RefHost::kMatrixIdentity;
  } else if (colors.matrix == RefHost::kMatrixIdentity) {
    colors.matrix =
        colors.primaries == RefHost::kPrimariesBT2020 ? AVCOL_SPC_BT2020_NCL : AVCOL_SPC_BT709;
  }
}

/// What H.265 says of the mastering display, in its units: "G(x,y)B(x,y)R(x,y)WP(x,y)L(max,min)".
std::string MasteringInUnits(const ColorDescription& colors, double xyUnits, double nitsUnits,
                             int decimals) {
  const auto point = [&](const Chromaticity& at) {
    char text[64];
    std::snprintf(text, sizeof text, "(%.*f,%.*f)", decimals, at.x * xyUnits, decimals,
                  at.y * xyUnits);
    return std::string(text);
  };
  const auto& display = colors.masteringChromaticities;
  return "G" + point(display.green) + "B" + point(display.blue) + "R" + point(display.red) + "WP" +
         point(display.white) + "L" +
         point({colors.masteringMaxLuminance * nitsUnits / xyUnits,
                colors.masteringMinLuminance * nitsUnits / xyUnits});
}

std::string LightText(const ContentLight& light) {
  return std::to_string(std::lround(light.maxCLL)) + "," +
         std::to_string(std::lround(light.maxFALL));
}

std::string X265Parameters(const Encoding& encoding) {
  const ColorDescription& colors = encoding.tags.colors;
  std::string text = "log-level=error:open-gop=0";
  if (IsHdr(colors)) text += ":repeat-headers=1";
  if (colors.transfer == RefHost::kTransferHLG) text += ":atc-sei=18";
  const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(encoding.pixelFormat);
  if (format->log2_chroma_h == 1) text += ":chromaloc=" + std::to_string(colors.chromaLocation);
  if (colors.masteringMaxLuminance > 0.0F) {
    text += ":master-display=" + MasteringInUnits(colors, 50000, 10000, 0);
  }
  if (encoding.tags.light.maxCLL > 0.0F)
    text += ":hdr10=1:max-cll=" + LightText(encoding.tags.light);
  return text;
}

std::string X264Parameters(const Encoding& encoding) {
  const ColorDescription& colors = encoding.tags.colors;
  std::string text = "open-gop=0";
  const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(encoding.pixelFormat);
  if (format->log2_chroma_h == 1) text += ":chromaloc=" + std::to_string(colors.chromaLocation);
  if (colors.masteringMaxLuminance > 0.0F) {
    text += ":mastering-display=" + MasteringInUnits(colors, 50000, 10000, 0);
  }
  if (encoding.tags.light.maxCLL > 0.0F) text += ":cll=" + LightText(encoding.tags.light);
  return text;
}

std::string SvtAv1Parameters(const Encoding& encoding) {
  const ColorDescription& colors = encoding.tags.colors;
  std::string text = "color-primaries=" + std::to_string(colors.primaries) +
                     ":transfer-characteristics=" + std::to_string(colors.transfer) +
                     ":matrix-coefficients=" + std::to_string(colors.matrix) +
                     ":color-range=" + (colors.fullRange ? "1" : "0");
  if (IsHdr(colors)) text += ":enable-hdr=1";
  if (colors.masteringMaxLuminance > 0.0F) {
    text += ":mastering-display=" + MasteringInUnits(colors, 1, 1, 4);
  }
  if (encoding.tags.light.maxCLL > 0.0F) text += ":content-light=" + LightText(encoding.tags.light);
  return text;
}

std::string ParametersOf(const Encoding& encoding) {
  switch (encoding.codec) {
    case VideoCodec::Hevc:
      return X265Parameters(encoding);
    case VideoCodec::H264:
      return X264Parameters(encoding);
    case VideoCodec::Av1:
      return SvtAv1Parameters(encoding);
    default:
      return {};
  }
}

/// Key frames every two seconds, so that players seek fast and a broken-off run loses little.
int KeyFrameInterval(const Encoding& encoding) {
  constexpr double kSeconds = 2.0;
  const double rate = encoding.frameRate.num > 0 ? av_q2d(encoding.frameRate) : 25.0;
  return std::max(1, static_cast<int>(std::lround(kSeconds * rate)));
}

std::string FormatNumber(double number) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", number);
  return text;
}

}  // namespace

Encoding SettleEncoding(const EncodingWishes& wishes, const SourceSamples& source,
                        const ClipTags& tags, const std::filesystem::path& output) {
  Encoding encoding;
  encoding.codec = wishes.codec.value_or(DefaultCodec(tags.colors, LowerCaseExtension(output)));
  RequireContainer(encoding.codec, output);
  const EncoderTraits& traits = TraitsOf(encoding.codec);
  const Sampling sampling = wishes.sampling.value_or(DefaultSampling(encoding.codec, source));
  const int bits =
      wishes.bits.value_or(DefaultBits(encoding.codec, sampling, tags.colors, source.bits));
  encoding.pixelFormat = SettleFormat(encoding.codec, sampling, bits);
  encoding.tags = tags;
  FitColors(encoding.tags.colors, sampling);

  const bool hasQuality = *traits.qualityOption != '\0';
  if (!hasQuality && (wishes.quality || wishes.preset)) {
    throw CommandError(ExitCode::Usage, "--quality and --preset have no effect with --codec " +
                                            NameOf(encoding.codec) + "; leave them out");
  }
  if (hasQuality) encoding.quality = wishes.quality.value_or(traits.quality);
  encoding.preset = wishes.preset.value_or(traits.preset);
  return encoding;
}

Encoder::Encoder(const Encoding& encoding, bool globalHeader, const std::filesystem::path& output)
    : output_(output), context_(avcodec_alloc_context3(&FindEncoder(encoding.codec))) {
  if (context_ == nullptr) throw std::bad_alloc();
  Open(encoding, globalHeader);
  // SVT-AV1 1.4 then waits for ever.
  waitsForFirst_ = encoding.codec == VideoCodec::Av1;
}

Encoder::~Encoder() {
  if (!waitsForFirst_) return;
  try {
    FeedOne();
  } catch (const std::exception&) {
    static_cast<void>(context_.release());  // better lost than waited for
  }
}

void Encoder::Open(const Encoding& encoding, bool globalHeader) {
  const EncoderTraits& traits = TraitsOf(encoding.codec);
  context_->width = encoding.width;
  context_->height = encoding.height;
  context_->pix_fmt = encoding.pixelFormat;
  context_->time_base = encoding.timeBase;
  context_->framerate = encoding.frameRate;
  context_->sample_aspect_ratio = encoding.sampleAspect;
  context_->gop_size = encoding.codec == VideoCodec::Ffv1 ? 1 : KeyFrameInterval(encoding);
  context_->thread_count = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
  if (globalHeader) context_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
  TagEncoder(encoding.tags.colors, *context_);

  AvOptions options;
  if (!encoding.preset.empty()) options.Set("preset", encoding.preset);
  if (encoding.quality) options.Set(traits.qualityOption, FormatNumber(*encoding.quality));
  if (*traits.parameters != '\0') options.Set(traits.parameters, ParametersOf(encoding));
  if (encoding.codec == VideoCodec::Ffv1) {
    context_->level = 3;
    options.Set("slicecrc", "1");
  }
  const std::string size = std::to_string(encoding.width) + "x" + std::to_string(encoding.height);
  if (std::max(encoding.width, encoding.height) > traits.longestSide) {
    Refuse(std::string(traits.encoder) + " does not take pictures of " + size +
           "; its largest is " + std::to_string(traits.longestSide) +
           " wide and high; choose another --codec");
  }
  const int result = avcodec_open2(context_.get(), nullptr, options.Address());
  if (IsLackOfMemory(result)) Fail(result);
  if (result < 0) {
    Refuse(std::string(traits.encoder) + " does not take these settings (" + AvErrorText(result) +
           "); check --preset, --quality and the size (" + size + ")");
  }
}

void Encoder::FeedOne() {
  const AvFramePtr frame = MakeAvFrame();
  frame->format = context_->pix_fmt;
  frame->width = context_->width;
  frame->height = context_->height;
  frame->pts = 0;
  if (av_frame_get_buffer(frame.get(), 0) < 0) throw std::bad_alloc();
  for (const AVBufferRef* plane : frame->buf) {
    if (plane != nullptr) std::fill_n(plane->data, plane->size, std::uint8_t{0});
  }
  Send(frame.get());
}

void Encoder::Send(const AVFrame* frame) {
  if (frame == nullptr && (waitsForFirst_ || ended_)) return;
  const int result = avcodec_send_frame(context_.get(), frame);
  if (result < 0) Fail(result);
  ended_ = frame == nullptr;
  if (ended_) return;
  waitsForFirst_ = false;
  ++owed_;
}

bool Encoder::Receive(AVPacket& packet) {
  const int result = avcodec_receive_packet(context_.get(), &packet);
  if (result == AVERROR(EAGAIN) || (result == AVERROR_EOF && owed_ == 0)) return false;
  if (result < 0) Fail(result);
  --owed_;
  return true;
}

void Encoder::Fail(int result) const {
  // A context that failed to open has lost its codec.
  const auto* traits = std::find_if(kTraits.begin(), kTraits.end(), [this](const auto& each) {
    return each.id == context_->codec_id;
  });
  const std::string start = output_.string() + ": the encoder " + traits->encoder;
  if (IsLackOfMemory(result)) {
    throw CommandError(ExitCode::CannotWrite,
                       start + " has not enough memory (" + AvErrorText(result) +
                           "); end other programs, or write a smaller picture");
  }
  throw CommandError(ExitCode::EngineRefused, start + " failed (" + AvErrorText(result) +
                                                  "); try another --codec or --preset");
}

}  // namespace Quillon::Cli
