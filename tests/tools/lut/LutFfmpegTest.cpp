// FFmpeg's lut3d filter applies the LUTs to a picture that `map` maps too.

#include <cmath>
#include <cstddef>
#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "bench/FilterGraph.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/lut/CubeText.h"
#include "tests/tools/lut/SignalPictures.h"

using namespace Quillon::Cli;

namespace {

constexpr std::size_t kPlaneToComponent[] = {1, 2, 0};  // green, blue, red

/// A frame of one row.
FramePtr MakeFrame(const std::vector<Signal>& signals) {
  FramePtr frame(av_frame_alloc());
  frame->format = AV_PIX_FMT_GBRPF32LE;
  frame->width = static_cast<int>(signals.size());
  frame->height = 1;
  CheckAv(av_frame_get_buffer(frame.get(), 0), "frame");
  for (int plane = 0; plane < 3; ++plane) {
    auto* row = reinterpret_cast<float*>(frame->data[plane]);
    for (const Signal& signal : signals) *row++ = signal[kPlaneToComponent[plane]];
  }
  return frame;
}

std::vector<Signal> ApplyByFfmpeg(const std::string& cube, const std::string& interpolation,
                                  const std::vector<Signal>& signals) {
  const GraphPtr graph(avfilter_graph_alloc());
  AVFilterContext* source = AddFilter(graph.get(), "buffer",
                                      "video_size=" + std::to_string(signals.size()) +
                                          "x1:pix_fmt=gbrpf32le:time_base=1/1:pixel_aspect=1/1");
  AVFilterContext* lut =
      AddFilter(graph.get(), "lut3d", "file=" + cube + ":interp=" + interpolation);
  AVFilterContext* sink = AddFilter(graph.get(), "buffersink", "");
  CheckAv(avfilter_link(source, 0, lut, 0), "link");
  CheckAv(avfilter_link(lut, 0, sink, 0), "link");
  CheckAv(avfilter_graph_config(graph.get(), nullptr), "configuration");

  const FramePtr in = MakeFrame(signals);
  const FramePtr out(av_frame_alloc());
  CheckAv(av_buffersrc_add_frame_flags(source, in.get(), AV_BUFFERSRC_FLAG_KEEP_REF), "source");
  CheckAv(av_buffersink_get_frame(sink, out.get()), "sink");
  if (out->format != AV_PIX_FMT_GBRPF32LE) throw std::runtime_error("FFmpeg: no float result");
  std::vector<Signal> results(signals.size());
  for (int plane = 0; plane < 3; ++plane) {
    const auto* row = reinterpret_cast<const float*>(out->data[plane]);
    for (Signal& result : results) result[kPlaneToComponent[plane]] = *row++;
  }
  return results;
}

struct Case {
  const char* interpolation;
  std::vector<std::string> options;
};

class LutInFfmpeg : public ::testing::TestWithParam<Case> {
 protected:
  RunResult Run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
    return RunQuillon(arguments);
  }

  ScratchFolder folder_;
};

TEST_P(LutInFfmpeg, GivesThePictureThatMapGivesWithinTheStatedError) {
  ASSERT_EQ(RunQuillon({"chart", "--size", "192x108", folder_ / "chart.png"}).exitCode, 0);
  ASSERT_EQ(Run({"map", "--depth", "16", folder_ / "chart.png", folder_ / "mapped.png"}).exitCode,
            0);
  ASSERT_EQ(Run({"lut", folder_ / "a.cube"}).exitCode, 0);

  const std::vector<Signal> mapped = ReadSignals(folder_ / "mapped.png");
  const std::vector<Signal> applied = ApplyByFfmpeg(folder_ / "a.cube", GetParam().interpolation,
                                                    ReadSignals(folder_ / "chart.png"));
  const std::string comments = ReadCube(folder_ / "a.cube").comments;
  const double stated =
      NumberBehind(comments.substr(comments.find(GetParam().interpolation)), "signal max ");
  double sum = 0.0;
  ASSERT_EQ(mapped.size(), applied.size());
  for (std::size_t i = 0; i < mapped.size(); ++i) {
    for (int c = 0; c < 3; ++c) {
      const double distance = std::abs(double{mapped[i][c]} - double{applied[i][c]});
      ASSERT_LE(distance, stated + 1.0 / 65535.0) << "pixel " << i;
      sum += distance;
    }
  }
  // Two 8-bit code values.
  EXPECT_LT(sum / (3.0 * static_cast<double>(mapped.size())), 0.008);
}

INSTANTIATE_TEST_SUITE_P(
    Mappings, LutInFfmpeg,
    ::testing::Values(
        Case{"tetrahedral", {"--peak", "4000"}}, Case{"trilinear", {"--peak", "4000"}},
        Case{"tetrahedral", {"--peak", "1000", "--to", "bt709", "--algorithm", "bt2446a"}},
        Case{"tetrahedral", {"--peak", "4000", "--to", "bt2100-pq", "--target-peak", "600"}}));

}  // namespace
