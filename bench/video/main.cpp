// 4K HDR10 to SDR video, without decoding and encoding: raw frames in memory on both sides. The
// engine beside FFmpeg's filters, a frame of each in turn, on as many threads.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include <oneapi/tbb/global_control.h>

#include "bench/Timing.h"
#include "bench/video/FfmpegVideo.h"
#include "bench/video/QuillonVideo.h"
#include "bench/video/VideoFrames.h"

using Quillon::Mapper::Algorithm;

namespace {

struct Contestant {
  std::string name;
  std::function<void()> mapFrame;
  std::vector<double> seconds;
};

double Milliseconds(const Contestant& contestant) { return Median(contestant.seconds) * 1e3; }

/// A frame of each to warm up, then `frames` of each, in turn.
void Run(std::vector<Contestant>& contestants, int frames) {
  for (Contestant& contestant : contestants) contestant.mapFrame();
  for (int frame = 0; frame < frames; ++frame) {
    for (Contestant& contestant : contestants) {
      contestant.seconds.push_back(SecondsOf(contestant.mapFrame));
    }
  }
}

void PrintRates(const std::vector<Contestant>& ours, const std::vector<Contestant>& theirs) {
  std::printf("  %-28s %9s %9s", "", "ms/frame", "frames/s");
  for (const Contestant& other : theirs) std::printf("  x %s", other.name.c_str());
  std::printf("\n");
  for (const auto* side : {&ours, &theirs}) {
    for (const Contestant& contestant : *side) {
      const double milliseconds = Milliseconds(contestant);
      std::printf("  %-28s %9.1f %9.2f", contestant.name.c_str(), milliseconds, 1e3 / milliseconds);
      for (const Contestant& other : theirs) {
        std::printf("  %*.2f", static_cast<int>(other.name.size()) + 2,
                    Milliseconds(other) / milliseconds);
      }
      std::printf("\n");
    }
  }
}

void PrintStages(const std::vector<Contestant>& stages) {
  for (const Contestant& stage : stages) {
    std::printf("  %-28s %9.1f\n", stage.name.c_str(), Milliseconds(stage));
  }
}

void RunOn(int threads, int frames) {
  const tbb::global_control limit(tbb::global_control::max_allowed_parallelism,
                                  static_cast<std::size_t>(threads));
  const PX::VideoFrameRef source = MakeHdr10Frame();
  QuillonVideo hue(Algorithm::HuePreservationDesaturation, source);
  QuillonVideo bt2446a(Algorithm::ITU2446A, source);
  QuillonVideo bt2390(Algorithm::ITU2390MaxRGB, source);
  FfmpegVideo hable("hable", threads, source);
  FfmpegVideo mobius("mobius", threads, source);
  FfmpegVideo reinhard("reinhard", threads, source);

  std::vector<Contestant> all = {{"quillon hue", [&] { hue.MapFrame(); }, {}},
                                 {"quillon bt2446a", [&] { bt2446a.MapFrame(); }, {}},
                                 {"quillon bt2390-maxrgb", [&] { bt2390.MapFrame(); }, {}},
                                 {"ffmpeg hable", [&] { hable.MapFrame(); }, {}},
                                 {"ffmpeg mobius", [&] { mobius.MapFrame(); }, {}},
                                 {"ffmpeg reinhard", [&] { reinhard.MapFrame(); }, {}},
                                 {"quillon hue: in", [&] { hue.CopyIn(); }, {}},
                                 {"quillon hue: engine", [&] { hue.MapWorkingFrame(); }, {}},
                                 {"quillon hue: out", [&] { hue.CopyOut(); }, {}}};
  Run(all, frames);
  std::printf("%d thread%s, medians of %d frames\n", threads, threads == 1 ? "" : "s", frames);
  PrintRates({all.begin(), all.begin() + 3}, {all.begin() + 3, all.begin() + 6});
  PrintStages({all.begin() + 6, all.end()});
}

}  // namespace

int main(int argc, char** argv) {
  constexpr int kFrames = 9;
  try {
    const int frames = argc > 1 ? std::atoi(argv[1]) : kFrames;
    if (argc > 2 || frames < 1) {
      std::fprintf(stderr, "usage: quillon-video-bench [FRAMES]\n");
      return 2;
    }
    std::printf("3840x2160, 10-bit PQ 4:2:0 to 8-bit BT.709 4:2:0\n");
    for (const int threads : {1, 2}) RunOn(threads, frames);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
