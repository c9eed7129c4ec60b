#include "tools/quillon/CurveOutputs.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "host/KS/CreateFrames.h"
#include "refhost/kestrel/PixelFormats.h"
#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/CurveCsv.h"
#include "tools/quillon/ExitCodes.h"
#include "tools/quillon/io/FramePixels.h"
#include "tools/quillon/io/StillEncoders.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/plot/CurveScene.h"
#include "tools/quillon/plot/DrawScene.h"

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes AsBytes(const std::string& text) { return {text.begin(), text.end()}; }

Bytes EncodeSvg(const CurveData& data, const fs::path& /*path*/) {
  return AsBytes(DrawSvg(MakeCurveScene(data)));
}

Bytes EncodeCsv(const CurveData& data, const fs::path& /*path*/) {
  return AsBytes(FormatCurveCsv(data));
}

Bytes EncodePlotPng(const CurveData& data, const fs::path& path) {
  const Bitmap bitmap = DrawBitmap(MakeCurveScene(data));
  StillOutput output;
  if (KS::CreateVideoFrame(output.frame, KS::kBgra8, bitmap.width, bitmap.height, {},
                           orvmediatypes::color::ColorSpace(ColorSpaceOfName("srgb")), false,
                           false) < 0) {
    throw CommandError(ExitCode::NotSupported, path.string() + ": there is no memory for it");
  }
  const FramePixels pixels = PixelsOf(output.frame);
  const std::size_t rowBytes = std::size_t{4} * bitmap.width;
  for (int y = 0; y < bitmap.height; ++y) {
    std::memcpy(pixels.Row<std::uint8_t>(y), bitmap.bgra.data() + y * rowBytes, rowBytes);
  }
  return EncodePng(output, path);
}

struct Format {
  std::string_view extension;
  Bytes (*encode)(const CurveData&, const fs::path&);
};

constexpr std::array<Format, 3> kFormats{
    {{".svg", EncodeSvg}, {".png", EncodePlotPng}, {".csv", EncodeCsv}}};

const Format& FormatOf(const fs::path& path) {
  const std::string extension = LowerCaseExtension(path);
  for (const Format& format : kFormats) {
    if (format.extension == extension) return format;
  }
  throw StillError(StillErrorKind::NotSupported, path,
                   "the extension \"" + extension + "\" names no format of a plot",
                   "choose .svg, .png or .csv");
}

}  // namespace

void CheckCurveTarget(const fs::path& path, bool overwrite) {
  FormatOf(path);
  CheckTargetFile(path, overwrite);
}

void WriteCurves(const std::vector<fs::path>& paths, const CurveData& data, bool overwrite) {
  std::vector<Bytes> files;
  files.reserve(paths.size());
  for (const fs::path& path : paths) files.push_back(FormatOf(path).encode(data, path));
  for (std::size_t i = 0; i < paths.size(); ++i) WriteTargetFile(paths[i], files[i], overwrite);
}
