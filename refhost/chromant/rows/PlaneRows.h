#pragma once

// Interleaved pixels to planes and back, and bounds for planes. Included like WideLanes.h.

#include <utility>

#include "refhost/chromant/rows/WideLanes.h"

namespace RefHost {
namespace {

/// Floats in a register.
constexpr int kNarrowLanes = 2 * kLanes;
using NarrowLanes __attribute__((vector_size(kNarrowLanes * sizeof(float)))) = float;

template <auto order, int... lane>
NarrowLanes ShuffleLanes(NarrowLanes a, NarrowLanes b, std::integer_sequence<int, lane...>) {
  return __builtin_shufflevector(a, b, order(lane)...);
}

/// The lanes of two registers that a function names for each lane.
template <auto order>
NarrowLanes Shuffle(NarrowLanes a, NarrowLanes b) {
  return ShuffleLanes<order>(a, b, std::make_integer_sequence<int, kNarrowLanes>());
}

constexpr int kHalf = kNarrowLanes / 2;

/// One channel of the pixels in two registers, twice.
template <int channel>
constexpr int ChannelOfTwo(int lane) {
  return 4 * (lane % kHalf) + channel;
}

constexpr int LowerHalves(int lane) { return lane < kHalf ? lane : lane + kHalf; }

/// One channel of the pixels in four registers.
template <int channel>
NarrowLanes ChannelOf(const NarrowLanes* pixels) {
  return Shuffle<LowerHalves>(Shuffle<ChannelOfTwo<channel>>(pixels[0], pixels[1]),
                              Shuffle<ChannelOfTwo<channel>>(pixels[2], pixels[3]));
}

/// Floats that memory is asked for before they are needed. Rows are split in pieces, between which
/// processors stop looking ahead by themselves.
constexpr std::size_t kAhead = 2048;

void SplitRun(const float* pixels, std::size_t count, float* red, float* green, float* blue) {
  std::size_t i = 0;
  for (; i + kNarrowLanes <= count; i += kNarrowLanes) {
    const float* from = pixels + 4 * i;
    NarrowLanes block[4];
    for (int k = 0; k < 4; ++k, from += kNarrowLanes) {
      __builtin_prefetch(from + kAhead);
      block[k] = Load<NarrowLanes>(from);
    }
    Store(blue + i, ChannelOf<0>(block));
    Store(green + i, ChannelOf<1>(block));
    Store(red + i, ChannelOf<2>(block));
  }
  for (; i < count; ++i) {
    blue[i] = pixels[4 * i];
    green[i] = pixels[4 * i + 1];
    red[i] = pixels[4 * i + 2];
  }
}

/// Lane by lane, and pair by pair, of two registers in turn; the lower or the upper half of them.
template <int half>
constexpr int LanesInTurn(int lane) {
  return half * kHalf + lane / 2 + lane % 2 * kNarrowLanes;
}
template <int half>
constexpr int PairsInTurn(int lane) {
  return half * kHalf + lane / 4 * 2 + lane % 2 + lane / 2 % 2 * kNarrowLanes;
}

void JoinRun(const float* red, const float* green, const float* blue, std::size_t count,
             float* pixels) {
  std::size_t i = 0;
  for (; i + kNarrowLanes <= count; i += kNarrowLanes) {
    const auto b = Load<NarrowLanes>(blue + i);
    const auto g = Load<NarrowLanes>(green + i);
    const auto r = Load<NarrowLanes>(red + i);
    const NarrowLanes opaque = 1.0F - NarrowLanes{};
    const NarrowLanes lower[] = {Shuffle<LanesInTurn<0>>(b, g), Shuffle<LanesInTurn<0>>(r, opaque)};
    const NarrowLanes upper[] = {Shuffle<LanesInTurn<1>>(b, g), Shuffle<LanesInTurn<1>>(r, opaque)};
    float* block = pixels + 4 * i;
    Store(block, Shuffle<PairsInTurn<0>>(lower[0], lower[1]));
    Store(block + kNarrowLanes, Shuffle<PairsInTurn<1>>(lower[0], lower[1]));
    Store(block + 2 * kNarrowLanes, Shuffle<PairsInTurn<0>>(upper[0], upper[1]));
    Store(block + 3 * kNarrowLanes, Shuffle<PairsInTurn<1>>(upper[0], upper[1]));
  }
  for (; i < count; ++i) {
    pixels[4 * i] = blue[i];
    pixels[4 * i + 1] = green[i];
    pixels[4 * i + 2] = red[i];
    pixels[4 * i + 3] = 1.0F;
  }
}

float Bounded(float sample, float most) {
  if (sample != sample) return 0.0F;
  if (sample > most) return most;
  return sample < -most ? -most : sample;
}

NarrowLanes Bounded(NarrowLanes samples, float most) {
  const NarrowLanes numbers = samples == samples ? samples : NarrowLanes{};
  const NarrowLanes below = numbers > most ? most - NarrowLanes{} : numbers;
  return below < -most ? -most - NarrowLanes{} : below;
}

void BoundRun(float* samples, std::size_t count, float most) {
  std::size_t i = 0;
  for (; i + kNarrowLanes <= count; i += kNarrowLanes) {
    Store(samples + i, Bounded(Load<NarrowLanes>(samples + i), most));
  }
  for (; i < count; ++i) samples[i] = Bounded(samples[i], most);
}

}  // namespace
}  // namespace RefHost
