#include <iomanip>

#include "tools/quillon/inspect/InspectReport.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/plot/NitsAxis.h"

namespace Quillon::Cli {

using orvmediatypes::color::Chromaticity;

namespace {

std::ostream& Label(std::ostream& out, const char* label) {
  return out << std::left << std::setw(18) << label;
}

void PrintVideo(std::ostream& out, const ClipInfo& info) {
  Label(out, "container") << info.container << '\n';
  Label(out, "video") << info.codec << ", " << info.width << 'x' << info.height;
  if (!info.pixelFormat.empty()) out << ", " << info.pixelFormat;
  if (info.frameRate.num > 0) out << ", " << av_q2d(info.frameRate) << " frames a second";
  if (info.seconds > 0.0) out << ", " << info.seconds << " s";
  if (info.frames > 1) out << ", " << info.frames << " frames";
  out << '\n';
  if (!info.audio.empty()) Label(out, "other streams") << info.audio << '\n';
  if (!info.dynamicMetadata.empty()) {
    Label(out, "also carries") << info.dynamicMetadata << " metadata, which is not applied\n";
  }
  if (info.rotation != 0) Label(out, "turned") << info.rotation << " degrees clockwise\n";
}

void PrintTags(std::ostream& out, const ClipTags& tags) {
  const auto& colors = tags.colors;
  Label(out, "colour space") << DescribeColorSpace(colors)
                             << (colors.fullRange ? ", full range" : ", narrow range") << '\n';
  if (colors.masteringMaxLuminance > 0.0F) {
    const auto point = [&out](const char* name, const Chromaticity& at) {
      out << ", " << name << ' ' << at.x << ' ' << at.y;
    };
    Label(out, "mastering display")
        << colors.masteringMinLuminance << " to " << colors.masteringMaxLuminance << " nits";
    point("red", colors.masteringChromaticities.red);
    point("green", colors.masteringChromaticities.green);
    point("blue", colors.masteringChromaticities.blue);
    point("white", colors.masteringChromaticities.white);
    out << '\n';
  }
  if (tags.light.maxCLL > 0.0F) {
    Label(out, "light levels") << "MaxCLL " << tags.light.maxCLL << " nits, MaxFALL "
                               << tags.light.maxFALL << " nits\n";
  }
}

void PrintScenes(std::ostream& out, const ClipLevels& levels,
                 const std::vector<ClipScene>& scenes) {
  Label(out, "measured") << "MaxCLL " << FormatNits(levels.MaxCll()) << " nits, MaxFALL "
                         << FormatNits(levels.MaxFall()) << " nits, steady peak "
                         << FormatNits(levels.SteadyPeak()) << " nits\n";
  for (const ClipScene& scene : scenes) {
    Label(out, "scene") << "frames " << scene.first << '-' << scene.first + scene.count - 1
                        << ", peak " << FormatNits(scene.peak) << " nits\n";
  }
}

void PrintFrames(std::ostream& out, const ClipLevels& levels) {
  out << "\n   frame      peak   average      50 %      90 %      99 %   99.99 %   (nits)\n";
  std::int64_t number = 0;
  for (const FrameLevels& frame : levels.frames) {
    out << std::right << std::setw(8) << number++;
    const auto& percentiles = frame.percentiles;
    for (const double nits : {frame.peak, frame.average, percentiles[0], percentiles[1],
                              percentiles[2], percentiles[3]}) {
      out << std::setw(10) << FormatNits(nits);
    }
    out << '\n';
  }
}

}  // namespace

void PrintInspection(std::ostream& out, const Inspection& inspection) {
  Label(out, "file") << inspection.path.string() << '\n';
  PrintVideo(out, inspection.info);
  PrintTags(out, inspection.info.tags);
  if (inspection.peak) {
    Label(out, "peak to map from")
        << FormatNits(inspection.peak->nits) << " nits (" << inspection.peak->origin << ")\n";
  }
  if (inspection.levels) PrintScenes(out, *inspection.levels, inspection.scenes);
  for (const std::string& warning : inspection.warnings) Label(out, "warning") << warning << '\n';
  if (inspection.levels) PrintFrames(out, *inspection.levels);
}

}  // namespace Quillon::Cli
