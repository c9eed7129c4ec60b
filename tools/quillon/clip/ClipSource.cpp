#include "tools/quillon/clip/ClipSource.h"

#include <utility>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/video/AvPictures.h"

extern "C" {
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

namespace Quillon::Cli {

using orvmediatypes::color::ColorSpace;

ClipSource::ClipSource(const std::filesystem::path& path, const FrameIndex* index,
                       std::int64_t first, DamagePolicy policy, std::int64_t maxPixels)
    : path_(path),
      reader_(path, index, first, policy, maxPixels),
      scaler_(nullptr, sws_freeContext) {}

SourceSamples ClipSource::Samples() const {
  const AVPixelFormat coded = av_get_pix_fmt(reader_.Info().pixelFormat.c_str());
  const AVPixelFormat shown = LayoutOf(coded) ? coded : NearestLayout(coded);
  const auto layout = LayoutOf(shown);
  if (!layout) return {};
  if (reader_.Info().tags.colors.matrix == RefHost::kMatrixIdentity) {
    return {Sampling::Rgb, reader_.Info().bits};
  }
  return {static_cast<Sampling>(layout->chroma), reader_.Info().bits};
}

void ClipSource::RequireSameSize(const ClipFrame& frame) const {
  const ClipInfo& info = reader_.Info();
  if (frame.samples->width == info.width && frame.samples->height == info.height) return;
  const auto size = [](int width, int height) {
    return std::to_string(width) + "x" + std::to_string(height);
  };
  throw CommandError(ExitCode::NotSupported,
                     path_.string() + ": frame " + std::to_string(frame.number) + " is " +
                         size(frame.samples->width, frame.samples->height) +
                         " where the clip began as " + size(info.width, info.height) +
                         "; map the parts apart, the first with --frames 0-" +
                         std::to_string(frame.number - 1));
}

/// Raw streams have no time stamps: their frames follow each other at the frame rate.
std::int64_t ClipSource::TimeOf(std::int64_t number) const {
  const AVRational rate = reader_.Info().frameRate;
  return rate.num > 0 ? av_rescale_q(number, av_inv_q(rate), TimeBase()) : number;
}

std::optional<SourceItem> ClipSource::NextItem() {
  auto item = reader_.NextItem();
  if (!item) return std::nullopt;
  if (auto* packet = std::get_if<AvPacketPtr>(&*item)) return SourcePacket(std::move(*packet));
  return Show(std::get<ClipFrame>(*item));
}

ClipPicture ClipSource::Show(const ClipFrame& frame) {
  RequireSameSize(frame);
  ClipPicture picture;
  picture.tags = reader_.TagsOfFrame(*frame.samples);
  picture.number = frame.number;
  picture.pts = frame.pts == AV_NOPTS_VALUE ? TimeOf(frame.number) : frame.pts;
  picture.samples = frame.samples;
  picture.frame = ShowAvFrame(InHostFormat(frame.samples), ColorSpace(picture.tags.colors));
  if (!picture.frame.IsUsable()) {
    throw CommandError(ExitCode::NotSupported,
                       path_.string() + ": its samples (" + reader_.Info().pixelFormat +
                           ") are not supported; convert the clip to yuv444p16 or gbrp16");
  }
  return picture;
}

std::shared_ptr<const AVFrame> ClipSource::InHostFormat(std::shared_ptr<const AVFrame> frame) {
  const auto format = static_cast<AVPixelFormat>(frame->format);
  if (LayoutOf(format)) return frame;
  const AVPixelFormat nearest = NearestLayout(format);
  if (nearest == AV_PIX_FMT_NONE) return frame;
  scaler_.reset(sws_getCachedContext(
      scaler_.release(), frame->width, frame->height, format, frame->width, frame->height, nearest,
      SWS_POINT | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP, nullptr, nullptr, nullptr));
  if (!converted_ || converted_->Format() != nearest) {
    converted_.emplace(nearest, frame->width, frame->height);
  }
  std::shared_ptr<AVFrame> converted = converted_->Take();
  const int* const coefficients = sws_getCoefficients(SWS_CS_DEFAULT);
  const int fullRange = frame->color_range == AVCOL_RANGE_JPEG ? 1 : 0;
  if (scaler_ == nullptr ||
      sws_setColorspaceDetails(scaler_.get(), coefficients, fullRange, coefficients, fullRange, 0,
                               1 << 16, 1 << 16) < 0 ||
      sws_scale(scaler_.get(), frame->data, frame->linesize, 0, frame->height, converted->data,
                converted->linesize) < 0) {
    throw CommandError(ExitCode::NotSupported,
                       path_.string() + ": its samples (" + reader_.Info().pixelFormat +
                           ") cannot be converted to " + av_get_pix_fmt_name(nearest));
  }
  return converted;
}

}  // namespace Quillon::Cli
