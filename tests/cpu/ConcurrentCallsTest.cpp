// Calls of the whole engine at once, on the reference host. What runs at the same time here, the
// thread sanitizer looks at.

#include <array>
#include <bit>
#include <cstdint>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "engine/Quillon.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"
#include "tests/Meeting.h"

namespace {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;
using PX::GamutMappingUtils::GamutMappingSettings;

constexpr int kWidth = 37;
constexpr int kHeight = 40;
constexpr int kFloats = 4 * kWidth * kHeight;

ColorSpace Linear(std::uint8_t primaries, int peakNits) {
  ColorDescription description;
  description.primaries = primaries;
  description.transfer = 8;
  description.peakLuminance = peakNits;
  return ColorSpace(description);
}

PX::VideoFrameRef MakeFrame(const ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  KS::CreateVideoFrame(frame, orvmediatypes::kLinearFloatBGRA, kWidth, kHeight, {}, colorSpace,
                       false, false);
  return frame;
}

float* PixelsOf(const PX::VideoFrameRef& frame) {
  return static_cast<float*>(
      orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(frame)->GetData());
}

GamutMappingSettings SettingsOf(int toneMap, int gamut) {
  GamutMappingSettings settings;
  settings.algorithmType = static_cast<orvmediatypes::color::GamutCompressionAlgorithmType>(gamut);
  auto& record = settings.toneMapSettings;
  record.sourceColorSpace = Linear(9, 1000);
  record.destinationColorSpace = Linear(1, 100);
  record.controls = {.version = 3, .peak = 4.9F, .peakGain = 1.0F, .colorPreservation = 0.3F};
  record.knee = 0.4F;
  record.algorithmType = static_cast<orvmediatypes::color::ToneMapAlgorithmType>(toneMap);
  return settings;
}

/// Result and bits of one call.
using CallResult = std::pair<int, std::vector<std::uint32_t>>;

CallResult Call(int toneMap, int gamut) {
  const GamutMappingSettings settings = SettingsOf(toneMap, gamut);
  const PX::VideoFrameRef source = MakeFrame(settings.toneMapSettings.sourceColorSpace);
  for (int i = 0; i < kFloats; ++i) {
    PixelsOf(source)[i] = static_cast<float>(i * 7919 % 5000) * 0.001F - 0.1F;
  }
  PX::VideoFrameRef destination = MakeFrame(settings.toneMapSettings.destinationColorSpace);
  const int result = Quillon::ApplyGamutMapping(source, settings, destination);
  std::vector<std::uint32_t> bits;
  for (int i = 0; i < kFloats; ++i) {
    bits.push_back(std::bit_cast<std::uint32_t>(PixelsOf(destination)[i]));
  }
  return {result, std::move(bits)};
}

/// Tone map and gamut compression. 7 is none: these calls fail, and trace it.
constexpr std::array<std::pair<int, int>, 8> kCalls = {
    {{2, 1}, {3, 2}, {4, 1}, {5, 2}, {6, 1}, {1, 1}, {7, 1}, {5, 7}}};

TEST(CallsAtOnce, GiveWhatOneGives) {
  constexpr std::size_t kTurns = 3;
  // Together first, so that they also meet where tables are built.
  std::array<std::vector<CallResult>, kCalls.size()> together;
  Meeting meeting(static_cast<int>(kCalls.size()));
  std::vector<std::thread> threads;
  for (std::size_t thread = 0; thread < kCalls.size(); ++thread) {
    threads.emplace_back([&, thread] {
      meeting.ArriveAndWait();
      for (std::size_t turn = 0; turn < kTurns; ++turn) {
        for (std::size_t call = 0; call < kCalls.size(); ++call) {
          const auto& [toneMap, gamut] = kCalls[(call + thread) % kCalls.size()];
          together[thread].push_back(Call(toneMap, gamut));
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  int failures = 0;
  for (std::size_t index = 0; index < kCalls.size(); ++index) {
    const CallResult alone = Call(kCalls[index].first, kCalls[index].second);
    failures += alone.first < 0 ? 1 : 0;
    for (std::size_t thread = 0; thread < kCalls.size(); ++thread) {
      for (std::size_t turn = 0; turn < kTurns; ++turn) {
        const std::size_t call = (index + kCalls.size() - thread) % kCalls.size();
        EXPECT_TRUE(together[thread][turn * kCalls.size() + call] == alone) << index;
      }
    }
  }
  EXPECT_EQ(failures, 2);
}

}  // namespace
