#include <exception>
#include <new>

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfOutputFile.h>
#include <ImfStandardAttributes.h>

#include "host/chromant/Conversion.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/ExrStreams.h"
#include "tools/quillon/io/FramePixels.h"
#include "tools/quillon/io/StillEncoders.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/StillOutputs.h"

namespace Quillon::Cli {

using orvmediatypes::color::Chromaticities;

namespace {

Imf::Chromaticities ToExr(const Chromaticities& colors) {
  const auto point = [](const orvmediatypes::color::Chromaticity& p) {
    return Imath::V2f(static_cast<float>(p.x), static_cast<float>(p.y));
  };
  return {point(colors.red), point(colors.green), point(colors.blue), point(colors.white)};
}

Imf::Header MakeHeader(const StillOutput& output, const std::filesystem::path& path,
                       const FramePixels& pixels, Imf::PixelType type) {
  const auto colors = RefHost::ChromaticitiesOf(output.frame->GetColorSpace());
  if (!colors) {
    throw StillError(StillErrorKind::NotSupported, path, "its primaries are not known",
                     "choose a named colour space");
  }
  Imf::Header header(pixels.width, pixels.height);
  header.compression() = Imf::ZIP_COMPRESSION;
  Imf::addChromaticities(header, ToExr(*colors));
  Imf::addWhiteLuminance(header, static_cast<float>(output.settings.GetGraphicsWhiteLuminance()));
  for (const char* name : {"R", "G", "B"}) header.channels().insert(name, Imf::Channel(type));
  return header;
}

Imf::FrameBuffer MakeFrameBuffer(const FramePixels& pixels, Imf::PixelType type) {
  const std::size_t sampleBytes = type == Imf::HALF ? 2 : 4;
  Imf::FrameBuffer buffer;
  const auto insert = [&](const char* name, std::size_t component) {
    buffer.insert(name,
                  Imf::Slice::Make(type, pixels.data + component * sampleBytes, Imath::V2i(0, 0),
                                   pixels.width, pixels.height, 4 * sampleBytes,
                                   static_cast<std::size_t>(pixels.rowBytes)));
  };
  insert("B", 0);
  insert("G", 1);
  insert("R", 2);
  return buffer;
}

}  // namespace

std::vector<std::uint8_t> EncodeExr(const StillOutput& output, const std::filesystem::path& path) {
  constexpr int kDepths[] = {16, 32};
  const bool half = ChooseDepth(output, path, "EXR", kDepths, 16) == 16;
  const Imf::PixelType type = half ? Imf::HALF : Imf::FLOAT;
  const PX::VideoFrameRef frame =
      ConvertForFile(output, path, half ? RefHost::kBgraHalf : orvmediatypes::kLinearFloatBGRA,
                     CHR::ORVColorSpaceToEquivalentLinearColorSpace(output.frame->GetColorSpace()));
  const FramePixels pixels = PixelsOf(frame);
  const Imf::Header header = MakeHeader(output, path, pixels, type);

  ExrMemoryOutput stream(path.string());
  try {
    Imf::OutputFile file(stream, header);
    file.setFrameBuffer(MakeFrameBuffer(pixels, type));
    file.writePixels(pixels.height);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    throw StillError(StillErrorKind::CannotWrite, path,
                     std::string("encoding EXR failed: ") + error.what(), "write another format");
  }
  return stream.Bytes();
}

}  // namespace Quillon::Cli
