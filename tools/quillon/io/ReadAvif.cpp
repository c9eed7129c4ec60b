#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <thread>

#include <avif/avif.h>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"
#include "mapper/Colors.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/AvifBoxes.h"
#include "tools/quillon/io/ColorTags.h"
#include "tools/quillon/io/FramePixels.h"
#include "tools/quillon/io/Reorient.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/StillFormats.h"
#include "tools/quillon/io/StillReaders.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

struct DestroyDecoder {
  void operator()(avifDecoder* decoder) const { avifDecoderDestroy(decoder); }
};
using Decoder = std::unique_ptr<avifDecoder, DestroyDecoder>;

[[noreturn]] void FailDecoding(const StillSource& source, const avifDecoder& decoder,
                               avifResult result) {
  std::string wrong = avifResultToString(result);
  if (decoder.diag.error[0] != '\0') wrong += std::string(" (") + decoder.diag.error + ")";
  switch (result) {
    case AVIF_RESULT_OUT_OF_MEMORY:
      throw std::bad_alloc();
    case AVIF_RESULT_NO_CODEC_AVAILABLE:
    case AVIF_RESULT_UNSUPPORTED_DEPTH:
    case AVIF_RESULT_NOT_IMPLEMENTED:
      FailNotSupported(source, "AVIF decoding: " + wrong, "convert it to PNG or EXR");
    default:
      FailDamaged(source, wrong);
  }
}

/// Files in use often lack the pixi property, so it is not insisted on. Exif orientation does not
/// count in AVIF.
Decoder OpenDecoder(const StillSource& source) {
  Decoder decoder(avifDecoderCreate());
  if (!decoder) throw std::bad_alloc();
  decoder->maxThreads = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, 16U));
  decoder->strictFlags = AVIF_STRICT_CLAP_VALID | AVIF_STRICT_ALPHA_ISPE_REQUIRED;
  decoder->ignoreExif = AVIF_TRUE;
  decoder->ignoreXMP = AVIF_TRUE;
  decoder->imageDimensionLimit = 0;
  decoder->imageSizeLimit = static_cast<std::uint32_t>(
      std::min<std::int64_t>(source.maxPixels, AVIF_DEFAULT_IMAGE_SIZE_LIMIT));
  avifResult result =
      avifDecoderSetIOMemory(decoder.get(), source.bytes.data(), source.bytes.size());
  if (result == AVIF_RESULT_OK) result = avifDecoderParse(decoder.get());
  if (result != AVIF_RESULT_OK) FailDecoding(source, *decoder, result);
  CheckDimensions(source, decoder->image->width, decoder->image->height);
  result = avifDecoderNextImage(decoder.get());
  if (result != AVIF_RESULT_OK) FailDecoding(source, *decoder, result);
  CheckDimensions(source, decoder->image->width, decoder->image->height);
  return decoder;
}

/// The part of the stored picture that is to be shown.
avifCropRect CropOf(const StillSource& source, const avifImage& image) {
  avifCropRect crop{0, 0, image.width, image.height};
  if ((image.transformFlags & AVIF_TRANSFORM_CLAP) == 0) return crop;
  avifDiagnostics diagnostics{};
  if (!avifCropRectConvertCleanApertureBox(&crop, &image.clap, image.width, image.height,
                                           image.yuvFormat, &diagnostics)) {
    FailDamaged(source, std::string("its crop makes no sense: ") + diagnostics.error);
  }
  return crop;
}

Orientation OrientationOf(const avifImage& image) {
  Orientation orientation;
  if ((image.transformFlags & AVIF_TRANSFORM_IROT) != 0) {
    orientation.quarterTurns = image.irot.angle & 3;
  }
  if ((image.transformFlags & AVIF_TRANSFORM_IMIR) != 0) {
    orientation.mirror = image.imir.mode == 0 ? Mirror::TopBottom : Mirror::LeftRight;
  }
  return orientation;
}

bool HoldsRgb(const avifImage& image) {
  return image.matrixCoefficients == AVIF_MATRIX_COEFFICIENTS_IDENTITY &&
         image.yuvFormat == AVIF_PIXEL_FORMAT_YUV444;
}

/// 0 where a code point says nothing.
std::uint8_t SpokenCodePoint(unsigned codePoint) {
  return Mapper::Tells(codePoint) && codePoint < 256 ? static_cast<std::uint8_t>(codePoint) : 0;
}

/// Encoders that do not say where chroma lies take the mean of the luma samples it covers.
std::uint8_t ChromaLocation(avifChromaSamplePosition position) {
  switch (position) {
    case AVIF_CHROMA_SAMPLE_POSITION_VERTICAL:
      return 0;
    case AVIF_CHROMA_SAMPLE_POSITION_COLOCATED:
      return 2;
    default:
      return 1;
  }
}

void RequireKnownMatrix(const StillSource& source, const avifImage& image) {
  constexpr int kLastKnown = 14;  // ITU-T H.273 (07/2021), table 4
  if (image.matrixCoefficients <= kLastKnown) return;
  FailNotSupported(source,
                   "its matrix " + std::to_string(image.matrixCoefficients) + " means nothing",
                   "write it with another matrix");
}

ColorDescription DescribeColors(const avifImage& image, std::vector<std::string>& remarks) {
  ColorDescription description;
  description.primaries = SpokenCodePoint(image.colorPrimaries);
  description.transfer = SpokenCodePoint(image.transferCharacteristics);
  if (image.icc.size > 0) remarks.emplace_back("ICC profile ignored");
  if (HoldsRgb(image)) return description;
  description.fullRange = image.yuvRange == AVIF_RANGE_FULL;
  description.chromaLocation = ChromaLocation(image.yuvChromaSamplePosition);
  description.matrix = SpokenCodePoint(image.matrixCoefficients);
  if (description.matrix == 0) {
    // Any matrix does for grey, whose chroma is neutral.
    description.matrix = 6;
    if (image.yuvFormat != AVIF_PIXEL_FORMAT_YUV400) {
      remarks.emplace_back("the YCbCr matrix is not given: taken as BT.601");
    }
  }
  return description;
}

bool IsOpaque(const avifImage& image) {
  if (image.alphaPlane == nullptr) return true;
  const unsigned opaque = (1U << image.depth) - 1U;
  for (std::uint32_t y = 0; y < image.height; ++y) {
    const std::uint8_t* row = image.alphaPlane + std::size_t{y} * image.alphaRowBytes;
    for (std::uint32_t x = 0; x < image.width; ++x) {
      const unsigned alpha =
          image.depth > 8 ? reinterpret_cast<const std::uint16_t*>(row)[x] : row[x];
      if (alpha != opaque) return false;
    }
  }
  return true;
}

void RemarkOnImage(const avifDecoder& decoder, const AvifBoxes& boxes,
                   std::vector<std::string>& remarks) {
  const avifImage& image = *decoder.image;
  if (!IsOpaque(image)) remarks.emplace_back(kAlphaDropped);
  if (boxes.hasGainMap) remarks.emplace_back("gain map ignored");
  if (decoder.imageCount > 1) {
    remarks.push_back("only the first of " + std::to_string(decoder.imageCount) + " pictures read");
  }
  if ((image.transformFlags & AVIF_TRANSFORM_PASP) != 0 &&
      image.pasp.hSpacing != image.pasp.vSpacing) {
    remarks.emplace_back("pixel aspect ratio ignored");
  }
}

/// One plane of the decoded picture, cropped.
struct DecodedPlane {
  const std::uint8_t* data = nullptr;
  std::size_t rowBytes = 0;
};

DecodedPlane PlaneOf(const avifImage& image, int plane, const avifCropRect& crop) {
  avifPixelFormatInfo info;
  avifGetPixelFormatInfo(image.yuvFormat, &info);
  const int shiftX = plane == 0 ? 0 : info.chromaShiftX;
  const int shiftY = plane == 0 ? 0 : info.chromaShiftY;
  const std::size_t sampleBytes = image.depth > 8 ? 2 : 1;
  const std::size_t rowBytes = image.yuvRowBytes[plane];
  return {image.yuvPlanes[plane] + (crop.y >> shiftY) * rowBytes + (crop.x >> shiftX) * sampleBytes,
          rowBytes};
}

orvmediatypes::PixelFormat PlanarFormat(const avifImage& image) {
  RefHost::ChromaFormat chroma = RefHost::ChromaFormat::C420;
  if (image.yuvFormat == AVIF_PIXEL_FORMAT_YUV444) chroma = RefHost::ChromaFormat::C444;
  if (image.yuvFormat == AVIF_PIXEL_FORMAT_YUV422) chroma = RefHost::ChromaFormat::C422;
  return RefHost::PlanarYCbCr(chroma, static_cast<int>(image.depth));
}

PX::VideoFrameRef CopyPlanes(const StillSource& source, const avifImage& image,
                             const avifCropRect& crop, const ColorDescription& description) {
  PX::VideoFrameRef frame = MakeFrame(source, PlanarFormat(image), static_cast<int>(crop.width),
                                      static_cast<int>(crop.height), ColorSpace(description));
  const auto planes = orvcore::classref::InterfaceCast<RefHost::IVideoFramePlaneAccess>(frame);
  const std::size_t sampleBytes = image.depth > 8 ? 2 : 1;
  for (int plane = 0; plane < 3; ++plane) {
    const bool neutral = plane > 0 && image.yuvFormat == AVIF_PIXEL_FORMAT_YUV400;
    const DecodedPlane from = neutral ? DecodedPlane{} : PlaneOf(image, plane, crop);
    const RefHost::Plane to = planes->GetPlane(plane);
    const std::size_t width = static_cast<std::size_t>(to.width);
    for (int y = 0; y < to.height; ++y) {
      std::uint8_t* row = static_cast<std::uint8_t*>(to.data) + std::ptrdiff_t{y} * to.rowBytes;
      if (!neutral) {
        std::memcpy(row, from.data + static_cast<std::size_t>(y) * from.rowBytes,
                    width * sampleBytes);
      } else if (sampleBytes == 1) {
        std::memset(row, 128, width);
      } else {
        std::fill_n(reinterpret_cast<std::uint16_t*>(row), width,
                    static_cast<std::uint16_t>(1U << (image.depth - 1)));
      }
    }
  }
  return frame;
}

/// Planes of green, blue and red as float BGRA.
PX::VideoFrameRef CopyRgb(const StillSource& source, const avifImage& image,
                          const avifCropRect& crop, const ColorDescription& description) {
  PX::VideoFrameRef frame =
      MakeFrame(source, orvmediatypes::kLinearFloatBGRA, static_cast<int>(crop.width),
                static_cast<int>(crop.height), ColorSpace(description));
  const FramePixels pixels = PixelsOf(frame);
  const int depth = static_cast<int>(image.depth);
  const auto signalOf = image.yuvRange == AVIF_RANGE_FULL ? FullRangeSignal : NarrowRangeSignal;
  constexpr int kComponentOfPlane[] = {1, 0, 2};
  for (int plane = 0; plane < 3; ++plane) {
    const DecodedPlane from = PlaneOf(image, plane, crop);
    for (int y = 0; y < pixels.height; ++y) {
      const std::uint8_t* codes = from.data + static_cast<std::size_t>(y) * from.rowBytes;
      float* component = pixels.Row<float>(y) + kComponentOfPlane[plane];
      for (std::ptrdiff_t x = 0; x < pixels.width; ++x) {
        const unsigned code =
            depth > 8 ? reinterpret_cast<const std::uint16_t*>(codes)[x] : codes[x];
        component[4 * x] = signalOf(code, depth);
      }
    }
  }
  MakeOpaque(pixels, 1.0F);
  return frame;
}

/// The YCbCr frame as float R'G'B' of the same colours.
PX::VideoFrameRef DecodeMatrix(const StillSource& source, const PX::VideoFrameRef& planar) {
  const ColorSpace tagged = planar->GetColorSpace();
  // Samples are only rearranged, so that any primaries and transfer do, and untagged ones too.
  ColorDescription stored = tagged.Description();
  stored.primaries = RefHost::kPrimariesBT709;
  stored.transfer = RefHost::kTransferSRGB;
  planar->SetColorSpace(ColorSpace(stored));
  const orvcore::geom::Bounds bounds = planar->GetBounds();
  PX::VideoFrameRef frame =
      MakeFrame(source, orvmediatypes::kLinearFloatBGRA, bounds.width, bounds.height,
                ColorSpace(RgbDescription(RefHost::kPrimariesBT709, RefHost::kTransferSRGB)));
  if (KS::VideoFrameManipulators::CopyFrame(planar, frame, 4, {}) < 0) {
    FailNotSupported(source,
                     "a picture with matrix " + std::to_string(stored.matrix) +
                         " that is to be turned cannot be decoded",
                     "turn it and write it with another matrix");
  }
  ColorDescription rgb = tagged.Description();
  rgb.matrix = 0;
  rgb.fullRange = true;
  rgb.chromaLocation = 0;
  frame->SetColorSpace(ColorSpace(rgb));
  return frame;
}

}  // namespace

Still ReadAvif(const StillSource& source) {
  const AvifBoxes boxes = ScanAvifBoxes(source.bytes);
  if (!boxes.complete) FailDamaged(source, "it ends too early");
  const avifROData head{source.bytes.data(), source.bytes.size()};
  if (!avifPeekCompatibleFileType(&head)) {
    throw StillError(StillErrorKind::CannotRead, source.path,
                     "it is of the family of AVIF, but no AVIF file",
                     "convert it to " + WrittenStillNames());
  }
  for (const AvifSize& size : boxes.sizes) CheckDimensions(source, size.width, size.height);
  const Decoder decoder = OpenDecoder(source);
  const avifImage& image = *decoder->image;

  RequireKnownMatrix(source, image);

  Still still;
  const ColorDescription description = DescribeColors(image, still.remarks);
  RemarkOnImage(*decoder, boxes, still.remarks);
  const avifCropRect crop = CropOf(source, image);
  still.frame = HoldsRgb(image) ? CopyRgb(source, image, crop, description)
                                : CopyPlanes(source, image, crop, description);
  if (const Orientation orientation = OrientationOf(image); orientation != Orientation{}) {
    if (!HoldsRgb(image)) still.frame = DecodeMatrix(source, still.frame);
    still.frame = Reorient(source, still.frame, orientation);
  }
  return still;
}

}  // namespace Quillon::Cli
