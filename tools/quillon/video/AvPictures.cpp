#include "tools/quillon/video/AvPictures.h"

#include <array>
#include <new>

#include "refhost/kestrel/SystemFrame.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

namespace Quillon::Cli {

namespace {

constexpr int kAlignment = 64;

std::optional<RefHost::ChromaFormat> ChromaOf(const AVPixFmtDescriptor& format) {
  if (format.log2_chroma_w == 0 && format.log2_chroma_h == 0) return RefHost::ChromaFormat::C444;
  if (format.log2_chroma_w == 1 && format.log2_chroma_h == 0) return RefHost::ChromaFormat::C422;
  if (format.log2_chroma_w == 1 && format.log2_chroma_h == 1) return RefHost::ChromaFormat::C420;
  return std::nullopt;
}

/// The smallest depth that the host has, with no fewer bits.
int HostDepth(int bits) {
  for (const int depth : {8, 10, 12}) {
    if (bits <= depth) return depth;
  }
  return 16;
}

AVPixelFormat PlanarFormat(bool rgb, RefHost::ChromaFormat chroma, int bits) {
  std::string name = "gbrp";
  if (!rgb) {
    name = chroma == RefHost::ChromaFormat::C420   ? "yuv420p"
           : chroma == RefHost::ChromaFormat::C422 ? "yuv422p"
                                                   : "yuv444p";
  }
  if (bits > 8) name += std::to_string(bits) + "le";
  return av_get_pix_fmt(name.c_str());
}

}  // namespace

orvmediatypes::PixelFormat AvLayout::Format() const {
  return semiPlanar ? RefHost::SemiPlanarYCbCr(chroma, bits) : RefHost::PlanarYCbCr(chroma, bits);
}

std::optional<AvLayout> LayoutOf(AVPixelFormat format) {
  const AVPixFmtDescriptor* d = av_pix_fmt_desc_get(format);
  constexpr auto kUnfit = AV_PIX_FMT_FLAG_BE | AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM |
                          AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_FLOAT |
                          AV_PIX_FMT_FLAG_BAYER;
  if (d == nullptr || d->nb_components != 3 || (d->flags & kUnfit) != 0) return std::nullopt;
  const int planes = av_pix_fmt_count_planes(format);
  const auto chroma = ChromaOf(*d);
  AvLayout layout;
  layout.bits = d->comp[0].depth;
  layout.semiPlanar = planes == 2;
  if (!chroma || planes < 2 || HostDepth(layout.bits) != layout.bits) return std::nullopt;
  layout.chroma = *chroma;
  const int shift = layout.semiPlanar && layout.bits > 8 ? 16 - layout.bits : 0;
  // Cr before Cb, or bits that lie elsewhere.
  if (d->comp[0].shift != shift || (planes == 2 && d->comp[1].offset != 0)) return std::nullopt;
  return layout;
}

AVPixelFormat NearestLayout(AVPixelFormat format) {
  const AVPixFmtDescriptor* d = av_pix_fmt_desc_get(format);
  if (d == nullptr || (d->flags & (AV_PIX_FMT_FLAG_FLOAT | AV_PIX_FMT_FLAG_HWACCEL)) != 0) {
    return AV_PIX_FMT_NONE;
  }
  const bool grey = d->nb_components < 3 && (d->flags & AV_PIX_FMT_FLAG_PAL) == 0;
  const bool rgb = !grey && (d->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
  const auto chroma = grey ? RefHost::ChromaFormat::C420 : ChromaOf(*d);
  return PlanarFormat(rgb, chroma.value_or(RefHost::ChromaFormat::C444),
                      HostDepth(d->comp[0].depth));
}

PX::VideoFrameRef ShowAvFrame(const std::shared_ptr<const AVFrame>& frame,
                              const orvmediatypes::color::ColorSpace& colorSpace) {
  PX::VideoFrameRef shown;
  const auto layout = LayoutOf(static_cast<AVPixelFormat>(frame->format));
  if (!layout) return shown;
  RefHost::SystemFrameLayout made{.format = layout->Format(),
                                  .width = frame->width,
                                  .height = frame->height,
                                  .colorSpace = colorSpace};
  RefHost::BorrowedMemory memory;
  for (std::size_t plane = 0; plane < RefHost::kMaxPlanes; ++plane) {
    memory.planes[plane] = frame->data[plane];
    made.rowBytes[plane] = frame->linesize[plane];
  }
  memory.release = [keep = frame] {};
  made.borrowed = std::move(memory);
  RefHost::CreateSystemFrame(shown, made);
  return shown;
}

AvFramePool::AvFramePool(AVPixelFormat format, int width, int height)
    : format_(format), width_(width), height_(height) {
  const int bytes = av_image_get_buffer_size(format, width, height, kAlignment);
  if (bytes < 0) throw std::bad_alloc();
  pool_.reset(av_buffer_pool_init(static_cast<std::size_t>(bytes) + kAlignment, nullptr));
  if (pool_ == nullptr) throw std::bad_alloc();
}

std::shared_ptr<AVFrame> AvFramePool::Take() {
  AvFramePtr frame = MakeAvFrame();
  frame->format = format_;
  frame->width = width_;
  frame->height = height_;
  frame->buf[0] = av_buffer_pool_get(pool_.get());
  if (frame->buf[0] == nullptr) throw std::bad_alloc();
  if (av_image_fill_arrays(frame->data, frame->linesize, frame->buf[0]->data, format_, width_,
                           height_, kAlignment) < 0) {
    throw std::bad_alloc();
  }
  return frame;
}

}  // namespace Quillon::Cli
