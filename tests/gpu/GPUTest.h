#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "tests/host/HostTest.h"

namespace gpu {

using scripted::Lines;

inline constexpr orvmediatypes::PixelFormat kBgraHalf{0x61724742U, 0x00080136U};

/// The line of a value that is pushed: its size, its alignment, its bits.
template <class Value>
std::string Pushed(Value value) {
  static_assert(sizeof(value) == 4 || sizeof(value) == 8);
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof(value));
  std::array<char, 80> line{};
  std::snprintf(line.data(), line.size(), "arguments.SetValueArgument(%zu, %zu, 0x%0*llx)",
                sizeof(value), sizeof(value), static_cast<int>(2 * sizeof(value)),
                static_cast<unsigned long long>(bits));
  return line.data();
}

/// One after another.
inline Lines Joined(std::initializer_list<Lines> parts) {
  Lines joined;
  for (const Lines& part : parts) joined.insert(joined.end(), part.begin(), part.end());
  return joined;
}

/// A test with frames on scripted devices: HLG to SDR, 3 by 2 pixels, with Reinhard and the
/// hue-preserving curve in the record.
class GPUTest : public scripted::HostTest {
 protected:
  scripted::FrameSetup SetupOf(std::string name, scripted::ColorDescription colors) const {
    return {.name = std::move(name),
            .bounds = {0, 0, 3, 2},
            .colors = colors,
            .hasMemory = false,
            .onGPU = true,
            .device = device};
  }

  /// Texts of all messages, each of which must be of level 7 in the common category.
  Lines Texts() const {
    Lines texts;
    for (const scripted::Message& message : host.Messages()) {
      EXPECT_EQ(message.level, 7);
      EXPECT_EQ(message.category, "Quillon");
      texts.push_back(message.text);
    }
    return texts;
  }

  /// Lets every one-pixel conversion yield this value: the limit of Reinhard, and the peak.
  void ConvertPixelsTo(float value) {
    host.results.convertFrame = [value](const scripted::Conversion& conversion) {
      conversion.destination[0] = value;
    };
  }

  void SetToneMap(int algorithm) {
    record.toneMapSettings.algorithmType =
        static_cast<orvmediatypes::color::ToneMapAlgorithmType>(algorithm);
  }

  void SetGamutCompression(int algorithm) {
    record.GamutCompressionSettings::algorithmType =
        static_cast<orvmediatypes::color::GamutCompressionAlgorithmType>(algorithm);
  }

  void TearDown() override {
    source = {};
    destination = {};
    working = {};
    HostTest::TearDown();
  }

  std::shared_ptr<scripted::Device> device = scripted::MakeDevice();
  PX::VideoFrameRef source;
  PX::VideoFrameRef destination;
  PX::VideoFrameRef working;
  PX::GamutMappingUtils::GamutMappingSettings record = scripted::MakeRecord(5, 1);
};

}  // namespace gpu
