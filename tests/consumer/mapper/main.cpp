// Maps a P010 picture of its own, as a decoder hands it over, to BGRA for a screen, by the
// installed library.

#include <cstdint>
#include <cstdio>
#include <vector>

#include "mapper/Plan.h"

using namespace Quillon::Mapper;

int main() {
  constexpr int kWidth = 64;
  constexpr int kHeight = 36;
  constexpr int kGrey = 588 << 6;  // of PQ, narrow range: about 200 nits
  std::vector<std::uint16_t> luma(kWidth * kHeight, kGrey);
  std::vector<std::uint16_t> chroma(kWidth * kHeight / 2, 512 << 6);
  std::vector<std::uint8_t> screen(kWidth * kHeight * 4);

  Source source{*ColorSpaceOfName("bt2100-pq"), {.maxCLL = 1000.0F}};
  source.colors.fullRange = false;
  const auto plan = Plan::Make(source, {*ColorSpaceOfName("srgb")}, {});
  if (!plan) return std::printf("%s\n", plan.error().message.c_str());

  const ConstPicture from{.format = kP010,
                          .width = kWidth,
                          .height = kHeight,
                          .planes = {luma.data(), chroma.data()},
                          .rowBytes = {kWidth * 2, kWidth * 2}};
  const Picture to{.format = kBGRA8,
                   .width = kWidth,
                   .height = kHeight,
                   .planes = {screen.data()},
                   .rowBytes = {kWidth * 4}};
  if (const auto failure = plan->Map(from, to)) {
    return std::printf("%s: %s\n", failure->message.c_str(), failure->trace.c_str());
  }

  // Grey at about half the light of white, below white and with alpha.
  const Decisions decisions = plan->Decide();
  std::printf("%s from %g nits: %d %d %d %d\n", decisions.toneMap->name.c_str(),
              decisions.sourcePeak.nits, screen[0], screen[1], screen[2], screen[3]);
  const bool grey = screen[0] == screen[1] && screen[1] == screen[2];
  return grey && screen[0] > 180 && screen[0] < 255 && screen[3] == 255 ? 0 : 1;
}
