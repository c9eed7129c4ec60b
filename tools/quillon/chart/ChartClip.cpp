#include "tools/quillon/chart/ChartClip.h"

#include <algorithm>
#include <cmath>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/chart/ChartScene.h"
#include "tools/quillon/clip/ClipSink.h"
#include "tools/quillon/io/OutputLock.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/LightLevels.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/process/Interrupt.h"

namespace Quillon::Cli {

namespace {

constexpr int kWhite = 203;
constexpr double kNight = 0.05;
constexpr double kHlgPeakNits = 1000.0;
constexpr AVRational kFrameRate = {24, 1};

PX::VideoFrameRef RenderFrame(const ChartClip& clip, int frame) {
  const int cut = (clip.frames + 1) / 2;
  ChartMoment moment;
  moment.light = clip.hlg ? kHlgPeakNits / kChartPeakNits : 1.0;
  if (frame >= cut) moment.light *= kNight;
  moment.shift = 0.2 * std::sin(0.25 * frame);
  return RenderChart(clip.width, clip.height, kWhite, moment);
}

ChartClipLight MeasureClip(const ChartClip& clip) {
  ChartClipLight light;
  for (int frame = 0; frame < clip.frames; ++frame) {
    const LightLevels levels = MeasureLightLevels(RenderFrame(clip, frame), kWhite);
    light.maxCLL = std::max(light.maxCLL, levels.peakNits);
    light.maxFALL = std::max(light.maxFALL, levels.averageNits);
  }
  return light;
}

ClipTags TagsOfChart(const ChartClip& clip, const ChartClipLight& light) {
  ClipTags tags;
  tags.colors = ColorSpaceOfName(clip.hlg ? "bt2100-hlg" : "bt2100-pq");
  constexpr std::uint8_t kTopLeft = 2;  // BT.2100, table 6
  tags.colors.chromaLocation = kTopLeft;
  if (clip.hlg) return tags;
  tags.colors = ChartPQ().Description();
  tags.colors.chromaLocation = kTopLeft;
  tags.light = {static_cast<float>(light.maxCLL), static_cast<float>(light.maxFALL)};
  return tags;
}

Encoding EncodingOf(const ChartClip& clip, const ChartClipLight& light) {
  EncodingWishes wishes;
  wishes.codec = VideoCodec::Hevc;
  wishes.bits = 10;
  wishes.quality = 12;
  wishes.preset = "veryfast";
  Encoding encoding = SettleEncoding(wishes, {}, TagsOfChart(clip, light), clip.output);
  encoding.width = clip.width;
  encoding.height = clip.height;
  encoding.timeBase = av_inv_q(kFrameRate);
  encoding.frameRate = kFrameRate;
  return encoding;
}

void WriteFrames(const ChartClip& clip, ClipSink& sink, const InterruptGuard& interrupt) {
  for (int frame = 0; frame < clip.frames; ++frame) {
    if (interrupt.IsInterrupted()) {
      throw CommandError(interrupt.Code(),
                         clip.output.string() + ": stopped; nothing is left of it");
    }
    MappedPicture picture = sink.NewPicture();
    CopyConverted(RenderFrame(clip, frame), picture.frame, kWhite);
    picture.number = frame;
    picture.pts = frame;
    sink.Write(std::move(picture), {});
  }
}

}  // namespace

ChartClipLight WriteChartClip(const ChartClip& clip) {
  CheckTargetFile(clip.output, clip.overwrite);
  const PartialClip files(clip.output);
  const OutputLock lock(clip.output, files.lock);
  const ChartClipLight light = MeasureClip(clip);
  const Encoding encoding = EncodingOf(clip, light);
  const InterruptGuard interrupt;
  try {
    ClipSink sink(clip.output, clip.overwrite, encoding, nullptr, "chart\n", {}, 0);
    WriteFrames(clip, sink, interrupt);
    sink.Finish();
  } catch (...) {
    files.Remove();  // it cannot be resumed
    throw;
  }
  return light;
}

}  // namespace Quillon::Cli
