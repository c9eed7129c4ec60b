#include <algorithm>
#include <memory>
#include <new>
#include <thread>

#include <avif/avif.h>

#include "host/kestrel/FrameInterfaces.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/StillEncoders.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/StillOutputs.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

constexpr int kSpeed = 8;
constexpr int kQuantizer = 1;  // of 0 to 63: no loss to be seen

struct DestroyEncoder {
  void operator()(avifEncoder* encoder) const { avifEncoderDestroy(encoder); }
};
struct DestroyImage {
  void operator()(avifImage* image) const { avifImageDestroy(image); }
};
using Image = std::unique_ptr<avifImage, DestroyImage>;

/// What libavif wrote.
struct EncodedData {
  avifRWData data = AVIF_DATA_EMPTY;
  EncodedData() = default;
  EncodedData(const EncodedData&) = delete;
  EncodedData& operator=(const EncodedData&) = delete;
  ~EncodedData() { avifRWDataFree(&data); }
};

/// The matrix that goes with the primaries; BT.601, which every reader knows, where they have none
/// of their own.
std::uint8_t MatrixFor(std::uint8_t primaries) {
  switch (primaries) {
    case RefHost::kPrimariesBT709:
      return AVIF_MATRIX_COEFFICIENTS_BT709;
    case RefHost::kPrimariesBT2020:
      return AVIF_MATRIX_COEFFICIENTS_BT2020_NCL;
    default:
      return AVIF_MATRIX_COEFFICIENTS_BT601;
  }
}

/// An image that shows the planes of a YCbCr 4:4:4 frame, valid while the frame lives.
Image WrapFrame(const PX::VideoFrameRef& frame, int depth) {
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  const ColorDescription description = frame->GetColorSpace().Description();
  Image image(avifImageCreate(static_cast<std::uint32_t>(bounds.width),
                              static_cast<std::uint32_t>(bounds.height),
                              static_cast<std::uint32_t>(depth), AVIF_PIXEL_FORMAT_YUV444));
  if (!image) throw std::bad_alloc();
  image->yuvRange = AVIF_RANGE_FULL;
  image->colorPrimaries = description.primaries;
  image->transferCharacteristics = description.transfer;
  image->matrixCoefficients = description.matrix;
  const auto planes = orvcore::classref::InterfaceCast<RefHost::IVideoFramePlaneAccess>(frame);
  for (int plane = 0; plane < AVIF_PLANE_COUNT_YUV; ++plane) {
    const RefHost::Plane view = planes->GetPlane(plane);
    image->yuvPlanes[plane] = static_cast<std::uint8_t*>(view.data);
    image->yuvRowBytes[plane] = static_cast<std::uint32_t>(view.rowBytes);
  }
  return image;
}

int DepthOf(const StillOutput& output, const std::filesystem::path& path, int transfer) {
  constexpr int kSdrDepths[] = {8, 10, 12};
  constexpr int kHdrDepths[] = {10, 12};
  return IsHdrTransfer(transfer) ? ChooseDepth(output, path, "AVIF", kHdrDepths, 10)
                                 : ChooseDepth(output, path, "AVIF", kSdrDepths, 10);
}

[[noreturn]] void FailEncoding(const std::filesystem::path& path, avifResult result,
                               const avifEncoder& encoder) {
  if (result == AVIF_RESULT_OUT_OF_MEMORY) throw std::bad_alloc();
  if (result == AVIF_RESULT_NO_CODEC_AVAILABLE) {
    throw StillError(StillErrorKind::NotSupported, path, "libavif has no AV1 encoder here",
                     "write PNG or EXR");
  }
  throw StillError(
      StillErrorKind::CannotWrite, path,
      std::string("encoding AVIF failed: ") + avifResultToString(result) + " " + encoder.diag.error,
      "write another format");
}

}  // namespace

std::vector<std::uint8_t> EncodeAvif(const StillOutput& output, const std::filesystem::path& path) {
  ColorDescription description = RequireCodePoints(output, path);
  const bool namesMatrix =
      description.matrix != 0 && description.matrix != RefHost::kUnspecifiedCodePoint;
  if (!namesMatrix) description.matrix = MatrixFor(description.primaries);
  description.fullRange = true;
  const int depth = DepthOf(output, path, description.transfer);
  const PX::VideoFrameRef frame =
      ConvertForFile(output, path, RefHost::PlanarYCbCr(RefHost::ChromaFormat::C444, depth),
                     ColorSpace(description));
  const Image image = WrapFrame(frame, depth);

  const std::unique_ptr<avifEncoder, DestroyEncoder> encoder(avifEncoderCreate());
  if (!encoder) throw std::bad_alloc();
  encoder->maxThreads = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, 16U));
  encoder->speed = kSpeed;
  encoder->minQuantizer = encoder->maxQuantizer = kQuantizer;
  EncodedData encoded;
  const avifResult result = avifEncoderWrite(encoder.get(), image.get(), &encoded.data);
  if (result != AVIF_RESULT_OK) FailEncoding(path, result, *encoder);
  return {encoded.data.data, encoded.data.data + encoded.data.size};
}

}  // namespace Quillon::Cli
