#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>
#include <vector>

#include "tools/quillon/chart/ChartClip.h"
#include "tools/quillon/chart/ChartScene.h"
#include "tools/quillon/io/WriteStill.h"
#include "tools/quillon/options/Commands.h"
#include "tools/quillon/options/SharedOptions.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/LightLevels.h"
#include "tools/quillon/process/Words.h"

namespace Quillon::Cli {

namespace {

constexpr int kWhite = 203;

struct ChartOptions {
  std::filesystem::path output;
  int width = 1920;
  int height = 1080;
  bool overwrite = false;
  bool video = false;
  bool hlg = false;
  int frames = 48;
};

void ParseSize(const std::string& text, ChartOptions& options) {
  constexpr int kLargestSide = 16384;
  const std::string_view view = text;
  const std::size_t cross = std::min(view.find('x'), view.size() - 1);
  const auto width = ParseNumberIn(view.substr(0, cross), 1, kLargestSide);
  const auto height = ParseNumberIn(view.substr(cross + 1), 1, kLargestSide);
  if (!width || !height) {
    throw CLI::ValidationError("--size", "'" + text +
                                             "' is not a size such as 1920x1080, at most " +
                                             std::to_string(kLargestSide) + " a side");
  }
  options.width = *width;
  options.height = *height;
}

void RunChartClip(const ChartOptions& options) {
  const ChartClip clip{options.output, options.width, options.height,
                       options.frames, options.hlg,   options.overwrite};
  const ChartClipLight light = WriteChartClip(clip);
  std::cout << options.output.string() << ": HDR chart, " << Counted(options.frames, "frame")
            << ", " << options.width << 'x' << options.height << ", "
            << (options.hlg ? "BT.2100 HLG" : "HDR10") << ", peak " << light.maxCLL
            << " nits, largest average " << light.maxFALL << " nits\n";
}

void RunChart(const ChartOptions& options) {
  if (options.video) return RunChartClip(options);
  CheckStillTarget(options.output, options.overwrite);
  const PX::VideoFrameRef scene = RenderChart(options.width, options.height, kWhite);
  const LightLevels levels = MeasureLightLevels(scene, kWhite);

  StillOutput output;
  output.frame = ConvertToFloat(scene, ChartPQ(), kWhite);
  output.settings = ColorManagementFor(kWhite);
  output.light = {static_cast<float>(levels.peakNits), static_cast<float>(levels.averageNits)};
  output.overwrite = options.overwrite;
  WriteStill(output, options.output);
  std::cout << options.output.string() << ": HDR chart, " << options.width << 'x' << options.height
            << ", BT.2020, peak " << levels.peakNits << " nits, average " << levels.averageNits
            << " nits\n";
}

}  // namespace

Subcommand AddChartCommand(CLI::App& app) {
  const auto options = std::make_shared<ChartOptions>();
  CLI::App& chart = *app.add_subcommand("chart", "Write a synthetic HDR picture to try mapping on");
  chart
      .add_option(
          "OUTPUT", options->output,
          "Picture to write: EXR (linear light, 1.0 = 203 nits), or PNG or AVIF (BT.2100 PQ); with "
          "--video an MP4, MOV or MKV clip")
      ->required();
  chart
      .add_option_function<std::string>(
          "--size", [options](const std::string& text) { ParseSize(text, *options); },
          "Width and height in pixels (1920x1080 when not given)")
      ->type_name("WxH");
  CLI::Option* video =
      chart.add_flag("--video", options->video, "Write a clip in HDR10: a day and a night scene");
  chart.add_flag("--hlg", options->hlg, "Write the clip in BT.2100 HLG, to 1000 nits")
      ->needs(video);
  AddNumber(chart, "--frames", options->frames, 1, 100000, "COUNT", "Frames of the clip")
      ->needs(video);
  chart.add_flag("--overwrite", options->overwrite, "Replace an output that exists");
  return [options] {
    RunChart(*options);
    return std::vector{options->output};
  };
}

}  // namespace Quillon::Cli
