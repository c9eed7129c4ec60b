#include <bit>
#include <new>

#include "refhost/kestrel/PixelFormats.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/ColorTags.h"
#include "tools/quillon/io/FramePixels.h"
#include "tools/quillon/io/PngChunks.h"
#include "tools/quillon/io/PngHandle.h"
#include "tools/quillon/io/StillEncoders.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/StillOutputs.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

struct Sink {
  std::vector<std::uint8_t> bytes;
  bool outOfMemory = false;
};

/// No exception may pass through libpng.
void OnWrite(png_structp png, png_bytep source, std::size_t count) {
  auto* sink = static_cast<Sink*>(png_get_io_ptr(png));
  try {
    sink->bytes.insert(sink->bytes.end(), source, source + count);
  } catch (const std::bad_alloc&) {
    sink->outOfMemory = true;
  }
  if (sink->outOfMemory) png_error(png, "out of memory");
}

void OnFlush(png_structp) {}

struct ColorChunks {
  PngCicp cicp{};
  bool srgb = false;
  bool hasMastering = false;
  PngMdcv mastering{};
  bool hasLight = false;
  PngClli light{};
};

ColorChunks MakeColorChunks(const ColorDescription& description, const ContentLight& light) {
  ColorChunks chunks;
  chunks.cicp = {description.primaries, description.transfer, 0, 1};
  chunks.srgb = description.primaries == RefHost::kPrimariesBT709 &&
                description.transfer == RefHost::kTransferSRGB;
  chunks.hasMastering = description.masteringMaxLuminance > 0.0F;
  if (chunks.hasMastering) chunks.mastering = FormatMdcv(description);
  chunks.hasLight = light.maxCLL > 0.0F || light.maxFALL > 0.0F;
  if (chunks.hasLight) chunks.light = FormatClli(light);
  return chunks;
}

void WriteChunk(png_structp png, const char* name, std::span<const std::uint8_t> data) {
  png_write_chunk(png, reinterpret_cast<png_const_bytep>(name), data.data(), data.size());
}

void WriteHeader(PngHandle& handle, Sink& sink, const FramePixels& pixels, int depth,
                 const ColorChunks& chunks) {
  png_structp png = handle.Png();
  png_infop info = handle.Info();
  png_set_write_fn(png, &sink, OnWrite, OnFlush);
  png_set_IHDR(png, info, static_cast<png_uint_32>(pixels.width),
               static_cast<png_uint_32>(pixels.height), depth, PNG_COLOR_TYPE_RGB,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (chunks.srgb) png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
  png_write_info(png, info);
  WriteChunk(png, "cICP", chunks.cicp);
  if (chunks.hasMastering) WriteChunk(png, "mDCV", chunks.mastering);
  if (chunks.hasLight) WriteChunk(png, "cLLI", chunks.light);
}

void WriteRows(PngHandle& handle, const FramePixels& pixels) {
  png_structp png = handle.Png();
  png_set_filler(png, 0, PNG_FILLER_AFTER);
  png_set_bgr(png);
  if constexpr (std::endian::native == std::endian::little) png_set_swap(png);
  for (int y = 0; y < pixels.height; ++y) png_write_row(png, pixels.Row<png_byte>(y));
  png_write_end(png, nullptr);
}

}  // namespace

std::vector<std::uint8_t> EncodePng(const StillOutput& output, const std::filesystem::path& path) {
  const ColorDescription description = RequireCodePoints(output, path);
  constexpr int kDepths[] = {8, 16};
  const int depth =
      ChooseDepth(output, path, "PNG", kDepths, IsHdrTransfer(description.transfer) ? 16 : 8);
  const PX::VideoFrameRef frame = ConvertForFile(
      output, path, depth == 16 ? RefHost::kBgra16 : RefHost::kBgra8, ColorSpace(description));
  const FramePixels pixels = PixelsOf(frame);
  const ColorChunks chunks = MakeColorChunks(description, output.light);

  Sink sink;
  PngHandle handle(PngHandle::Use::Write);
  if (!handle.IsUsable()) throw std::bad_alloc();
  const bool done = handle.Guard([&] {
    WriteHeader(handle, sink, pixels, depth, chunks);
    WriteRows(handle, pixels);
  });
  if (!done) {
    throw StillError(StillErrorKind::CannotWrite, path,
                     std::string("encoding PNG failed: ") + handle.Error(), "write another format");
  }
  return std::move(sink.bytes);
}

}  // namespace Quillon::Cli
