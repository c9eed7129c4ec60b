#include "tools/quillon/curve/CurveOutputs.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include "tools/quillon/curve/CurveCsv.h"
#include "tools/quillon/io/StillEncoders.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/picture/BitmapFrame.h"
#include "tools/quillon/plot/CurveScene.h"
#include "tools/quillon/plot/DrawScene.h"

namespace Quillon::Cli {

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
  StillOutput output;
  output.frame = FrameOfBitmap(DrawBitmap(MakeCurveScene(data)));
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

}  // namespace Quillon::Cli
