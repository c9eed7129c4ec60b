#include "mapper/Picture.h"

#include "mapper/Frames.h"
#include "mapper/WrapPicture.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"

using orvmediatypes::color::ColorSpace;

namespace Quillon::Mapper {

namespace {

RefHost::ChromaFormat HostChroma(PixelFormat::Chroma chroma) {
  switch (chroma) {
    case PixelFormat::Chroma::C420:
      return RefHost::ChromaFormat::C420;
    case PixelFormat::Chroma::C422:
      return RefHost::ChromaFormat::C422;
    default:
      return RefHost::ChromaFormat::C444;
  }
}

std::optional<orvmediatypes::PixelFormat> InterleavedFormat(const PixelFormat& format) {
  switch (format.samples) {
    case PixelFormat::Samples::Half:
      return format.bits == 16 ? std::optional(RefHost::kBgraHalf) : std::nullopt;
    case PixelFormat::Samples::Float:
      return format.bits == 32 ? std::optional(RefHost::kBgraFloat) : std::nullopt;
    default:
      if (format.bits == 16) return RefHost::kBgra16;
      return format.bits == 8 ? std::optional(RefHost::kBgra8) : std::nullopt;
  }
}

std::optional<orvmediatypes::PixelFormat> HostFormat(const PixelFormat& format) {
  if (format.layout == PixelFormat::Layout::BGRA) return InterleavedFormat(format);
  if (format.samples != PixelFormat::Samples::Integer) return std::nullopt;
  const RefHost::ChromaFormat chroma = HostChroma(format.chroma);
  const auto known = format.layout == PixelFormat::Layout::Planar
                         ? RefHost::PlanarYCbCr(chroma, format.bits)
                         : RefHost::SemiPlanarYCbCr(chroma, format.bits);
  return RefHost::DescribeFormat(known) ? std::optional(known) : std::nullopt;
}

std::string SizeText(int width, int height) {
  return std::to_string(width) + "x" + std::to_string(height);
}

}  // namespace

Picture Writable(const ConstPicture& picture) {
  Picture writable{.format = picture.format,
                   .width = picture.width,
                   .height = picture.height,
                   .rowBytes = picture.rowBytes};
  for (std::size_t i = 0; i < picture.planes.size(); ++i) {
    writable.planes[i] = const_cast<void*>(picture.planes[i]);  // NOLINT: frames know no const
  }
  return writable;
}

Result<PX::VideoFrameRef> WrapPicture(const Picture& picture, const ColorDescription& colors) {
  const auto format = HostFormat(picture.format);
  if (!format) {
    return Error{Code::InvalidArgument,
                 "there is no such pixel format: " + std::to_string(picture.format.bits) + " bits",
                 {}};
  }
  // 0 bytes a row would let the frame choose.
  const int planes = RefHost::DescribeFormat(*format).value_or(RefHost::FormatInfo{}).planeCount;
  bool whole = true;
  for (int i = 0; i < planes; ++i) {
    whole = whole && picture.rowBytes[static_cast<std::size_t>(i)] > 0;
  }
  PX::VideoFrameRef frame;
  const int made =
      !whole ? -1
             : RefHost::CreateSystemFrame(
                   frame, {.format = *format,
                           .width = picture.width,
                           .height = picture.height,
                           .colorSpace = ColorSpace(colors),
                           .rowBytes = picture.rowBytes,
                           .borrowed = RefHost::BorrowedMemory{.planes = picture.planes}});
  if (made >= 0) return frame;
  return Error{Code::InvalidArgument,
               "a picture of " + SizeText(picture.width, picture.height) +
                   " cannot be one: its sides are at least 1, its planes are not null, and a row "
                   "holds its samples",
               {}};
}

Error NoFrame(int width, int height) {
  return {Code::NotSupported, "no frame of " + SizeText(width, height) + " can be made", {}};
}

Result<PX::VideoFrameRef> MakeFrameLike(const PX::VideoFrameRef& frame, int height) {
  const int width = frame->GetBounds().width;
  PX::VideoFrameRef made;
  if (RefHost::CreateSystemFrame(made, {.format = frame->GetPixelFormat(),
                                        .width = width,
                                        .height = height,
                                        .colorSpace = frame->GetColorSpace()}) >= 0) {
    return made;
  }
  return NoFrame(width, height);
}

Failure CheckSameSize(const ConstPicture& one, const Picture& other) {
  if (one.width == other.width && one.height == other.height) return std::nullopt;
  return Error{Code::InvalidArgument,
               "the pictures differ in size: " + SizeText(one.width, one.height) + " and " +
                   SizeText(other.width, other.height),
               {}};
}

Result<LightLevels> MeasureLight(const ConstPicture& picture, const ColorDescription& colors,
                                 int white, double percent) {
  const auto frame = WrapPicture(Writable(picture), colors);
  if (!frame) return frame.error();
  return MeasureLight(*frame, white, percent);
}

}  // namespace Quillon::Mapper
