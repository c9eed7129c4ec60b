#include <string>
#include <utility>
#include <vector>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/ColorTags.h"
#include "tools/quillon/io/FramePixels.h"
#include "tools/quillon/io/RadianceHeader.h"
#include "tools/quillon/io/RadiancePixels.h"
#include "tools/quillon/io/StillReaders.h"

namespace Quillon::Cli {

Still ReadRadiance(const StillSource& source) {
  RadianceHeader header = ParseRadianceHeader(source);
  orvmediatypes::color::ColorDescription description =
      RgbDescription(RefHost::kPrimariesBT709, RefHost::kTransferLinear);
  if (!header.primaries) header.remarks.emplace_back("it tells no primaries: taken as BT.709");
  if (header.primaries && !SetPrimaries(description, *header.primaries)) {
    header.remarks.emplace_back("the PRIMARIES line describes no colours and was ignored");
  }
  // A scanline takes a pixel at least, and what repeats it.
  constexpr double kPixelBytes = 4.0;
  const double rowBytes = header.width == 1 ? kPixelBytes : 2.0 * kPixelBytes;
  CheckHeld(source, std::to_string(header.height) + " scanlines", header.height * rowBytes,
            static_cast<double>(source.bytes.size() - header.pixelOffset));
  Still still;
  still.frame = MakeFrame(source, orvmediatypes::kLinearFloatBGRA, header.width, header.height,
                          orvmediatypes::color::ColorSpace(description));
  still.remarks = std::move(header.remarks);
  const auto [redScale, greenScale, blueScale] = header.scale;

  const FramePixels pixels = PixelsOf(still.frame);
  RadianceScanlines scanlines(source, header.pixelOffset);
  std::vector<Rgbe> row(static_cast<std::size_t>(header.width));
  for (int y = 0; y < pixels.height; ++y) {
    scanlines.ReadRow(row);
    float* to = pixels.Row<float>(y);
    for (const Rgbe& pixel : row) {
      const float unit = pixel.Unit();
      *to++ = static_cast<float>(pixel.blue) * unit / static_cast<float>(blueScale);
      *to++ = static_cast<float>(pixel.green) * unit / static_cast<float>(greenScale);
      *to++ = static_cast<float>(pixel.red) * unit / static_cast<float>(redScale);
      *to++ = 1.0F;
    }
  }
  return still;
}

}  // namespace Quillon::Cli
