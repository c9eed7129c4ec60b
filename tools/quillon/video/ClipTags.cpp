#include "tools/quillon/video/ClipTags.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "refhost/orvmediatypes/H273.h"

extern "C" {
#include <libavutil/mastering_display_metadata.h>
#include <libavutil/pixdesc.h>
}

namespace Quillon::Cli {

using orvmediatypes::color::Chromaticities;
using orvmediatypes::color::Chromaticity;
using orvmediatypes::color::ColorDescription;

namespace {

constexpr int kChromaticityUnits = 50000;  // ST 2086
constexpr int kNitsUnits = 10000;

bool Tells(int codePoint) { return codePoint != 0 && codePoint != RefHost::kUnspecifiedCodePoint; }

std::uint8_t FirstTold(int frame, int stream) {
  if (Tells(frame)) return static_cast<std::uint8_t>(frame);
  return static_cast<std::uint8_t>(Tells(stream) ? stream : 0);
}

bool IsRgb(const AVFrame& frame) {
  const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
  return format != nullptr && (format->flags & AV_PIX_FMT_FLAG_RGB) != 0;
}

std::uint8_t MatrixOf(const AVFrame& frame, const AVStream& stream, std::uint8_t primaries) {
  if (IsRgb(frame)) return RefHost::kMatrixIdentity;
  const std::uint8_t told = FirstTold(frame.colorspace, stream.codecpar->color_space);
  if (told != 0) return told;
  return primaries == RefHost::kPrimariesBT2020 ? AVCOL_SPC_BT2020_NCL : AVCOL_SPC_BT709;
}

bool IsFullRange(const AVFrame& frame, const AVStream& stream) {
  if (frame.color_range != AVCOL_RANGE_UNSPECIFIED) return frame.color_range == AVCOL_RANGE_JPEG;
  const auto told = stream.codecpar->color_range;
  return told != AVCOL_RANGE_UNSPECIFIED ? told == AVCOL_RANGE_JPEG : IsRgb(frame);
}

/// FFmpeg counts chroma locations from 1, in H.273's order.
std::uint8_t ChromaLocationOf(const AVFrame& frame, const AVStream& stream) {
  const int told = frame.chroma_location != AVCHROMA_LOC_UNSPECIFIED
                       ? frame.chroma_location
                       : stream.codecpar->chroma_location;
  return told == AVCHROMA_LOC_UNSPECIFIED ? 0 : static_cast<std::uint8_t>(told - 1);
}

Chromaticity PointOf(const AVRational (&coordinates)[2]) {
  return {av_q2d(coordinates[0]), av_q2d(coordinates[1])};
}

/// Red lies furthest right, green highest; files that list green, blue, red are common.
void SortPrimaries(Chromaticities& colors) {
  std::array<Chromaticity, 3> points = {colors.red, colors.green, colors.blue};
  std::iter_swap(points.begin(), std::max_element(points.begin(), points.end(),
                                                  [](auto& a, auto& b) { return a.x < b.x; }));
  std::iter_swap(points.begin() + 1, std::max_element(points.begin() + 1, points.end(),
                                                      [](auto& a, auto& b) { return a.y < b.y; }));
  colors.red = points[0];
  colors.green = points[1];
  colors.blue = points[2];
}

void ReadMastering(const AVMasteringDisplayMetadata& metadata, ColorDescription& colors) {
  if (metadata.has_primaries != 0) {
    colors.masteringChromaticities = {
        PointOf(metadata.display_primaries[0]), PointOf(metadata.display_primaries[1]),
        PointOf(metadata.display_primaries[2]), PointOf(metadata.white_point)};
    SortPrimaries(colors.masteringChromaticities);
  }
  if (metadata.has_luminance != 0) {
    colors.masteringMaxLuminance = static_cast<float>(av_q2d(metadata.max_luminance));
    colors.masteringMinLuminance = static_cast<float>(av_q2d(metadata.min_luminance));
  }
}

/// Side data of a kind, of the frame or else of the stream; null where there is none.
template <class Metadata>
const Metadata* FindSideData(const AVFrame& frame, AVFrameSideDataType frameType,
                             const AVStream& stream, AVPacketSideDataType streamType) {
  if (const AVFrameSideData* data = av_frame_get_side_data(&frame, frameType)) {
    return reinterpret_cast<const Metadata*>(data->data);
  }
  return reinterpret_cast<const Metadata*>(av_stream_get_side_data(&stream, streamType, nullptr));
}

AVRational InUnits(double value, int units) {
  return {static_cast<int>(std::lround(value * units)), units};
}

void WriteMastering(const ColorDescription& colors, AVMasteringDisplayMetadata& metadata) {
  const Chromaticities& display = colors.masteringChromaticities;
  const std::array<Chromaticity, 3> primaries = {display.red, display.green, display.blue};
  for (std::size_t i = 0; i < primaries.size(); ++i) {
    metadata.display_primaries[i][0] = InUnits(primaries[i].x, kChromaticityUnits);
    metadata.display_primaries[i][1] = InUnits(primaries[i].y, kChromaticityUnits);
  }
  metadata.white_point[0] = InUnits(display.white.x, kChromaticityUnits);
  metadata.white_point[1] = InUnits(display.white.y, kChromaticityUnits);
  metadata.has_primaries = 1;
  metadata.max_luminance = InUnits(colors.masteringMaxLuminance, kNitsUnits);
  metadata.min_luminance = InUnits(colors.masteringMinLuminance, kNitsUnits);
  metadata.has_luminance = 1;
}

template <class Metadata>
Metadata& AddSideData(AVStream& stream, AVPacketSideDataType type) {
  std::uint8_t* bytes = av_stream_new_side_data(&stream, type, sizeof(Metadata));
  if (bytes == nullptr) throw std::bad_alloc();
  return *new (bytes) Metadata{};
}

}  // namespace

ClipTags TagsOf(const AVFrame& frame, const AVStream& stream) {
  ClipTags tags;
  const AVCodecParameters& told = *stream.codecpar;
  tags.colors.primaries = FirstTold(frame.color_primaries, told.color_primaries);
  tags.colors.transfer = FirstTold(frame.color_trc, told.color_trc);
  tags.colors.matrix = MatrixOf(frame, stream, tags.colors.primaries);
  tags.colors.fullRange = IsFullRange(frame, stream);
  tags.colors.chromaLocation = ChromaLocationOf(frame, stream);

  const auto* mastering =
      FindSideData<AVMasteringDisplayMetadata>(frame, AV_FRAME_DATA_MASTERING_DISPLAY_METADATA,
                                               stream, AV_PKT_DATA_MASTERING_DISPLAY_METADATA);
  if (mastering != nullptr) ReadMastering(*mastering, tags.colors);
  const auto* light = FindSideData<AVContentLightMetadata>(frame, AV_FRAME_DATA_CONTENT_LIGHT_LEVEL,
                                                           stream, AV_PKT_DATA_CONTENT_LIGHT_LEVEL);
  if (light != nullptr) {
    tags.light = {static_cast<float>(light->MaxCLL), static_cast<float>(light->MaxFALL)};
  }
  return tags;
}

void TagEncoder(const ColorDescription& colors, AVCodecContext& encoder) {
  encoder.color_primaries = static_cast<AVColorPrimaries>(colors.primaries);
  encoder.color_trc = static_cast<AVColorTransferCharacteristic>(colors.transfer);
  encoder.colorspace = static_cast<AVColorSpace>(colors.matrix);
  encoder.color_range = colors.fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
  const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(encoder.pix_fmt);
  const bool is420 = format->log2_chroma_w == 1 && format->log2_chroma_h == 1;
  encoder.chroma_sample_location =
      is420 ? static_cast<AVChromaLocation>(colors.chromaLocation + 1) : AVCHROMA_LOC_UNSPECIFIED;
}

void TagStream(const ClipTags& tags, AVStream& stream) {
  if (tags.colors.masteringMaxLuminance > 0.0F) {
    WriteMastering(tags.colors, AddSideData<AVMasteringDisplayMetadata>(
                                    stream, AV_PKT_DATA_MASTERING_DISPLAY_METADATA));
  }
  if (tags.light.maxCLL > 0.0F) {
    auto& light = AddSideData<AVContentLightMetadata>(stream, AV_PKT_DATA_CONTENT_LIGHT_LEVEL);
    light.MaxCLL = static_cast<unsigned>(std::lround(tags.light.maxCLL));
    light.MaxFALL = static_cast<unsigned>(std::lround(tags.light.maxFALL));
  }
}

}  // namespace Quillon::Cli
