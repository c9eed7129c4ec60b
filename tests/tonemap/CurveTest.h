#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "base/SupportVector.h"
#include "host/pavix/ToneMappingUtils.h"

namespace tonemap {

/// Blue, green, red, alpha.
using Pixel = std::array<float, 4>;

inline constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
inline constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// The controls that curves read.
struct Controls {
  float peak = 1.0F;
  float gain = 1.0F;
  float preservation = 0.0F;
};

inline PX::ToneMappingUtils::ToneMapSettings SettingsOf(const Controls& controls) {
  PX::ToneMappingUtils::ToneMapSettings settings;
  settings.controls.peak = controls.peak;
  settings.controls.peakGain = controls.gain;
  settings.controls.colorPreservation = controls.preservation;
  return settings;
}

/// One pixel through a curve of the engine.
template <class Curve>
Pixel Map(Pixel pixel, const Quillon::SupportVector& params, const Controls& controls) {
  Curve{}(pixel.data(), params, SettingsOf(controls));
  return pixel;
}

inline std::uint32_t Bits(float value) { return std::bit_cast<std::uint32_t>(value); }

/// Equal bit for bit: zeros of different sign are two.
inline void ExpectBits(const Pixel& actual, const Pixel& expected) {
  for (std::size_t channel = 0; channel < actual.size(); ++channel) {
    EXPECT_EQ(Bits(actual[channel]), Bits(expected[channel]))
        << "channel " << channel << ": " << std::hexfloat << actual[channel] << " instead of "
        << expected[channel];
  }
}

/// Colours within 4 ulp, alpha bit for bit.
inline void ExpectWithinUlps(const Pixel& actual, const Pixel& expected) {
  for (std::size_t channel = 0; channel < 3; ++channel) {
    EXPECT_FLOAT_EQ(actual[channel], expected[channel]) << "channel " << channel;
  }
  EXPECT_EQ(Bits(actual[3]), Bits(expected[3]));
}

/// What arithmetic treats specially, and one ordinary value.
inline constexpr std::array<float, 10> kSpecialValues = {kNaN,
                                                         kInfinity,
                                                         -kInfinity,
                                                         0.0F,
                                                         -0.0F,
                                                         std::numeric_limits<float>::denorm_min(),
                                                         -std::numeric_limits<float>::denorm_min(),
                                                         std::numeric_limits<float>::max(),
                                                         std::numeric_limits<float>::lowest(),
                                                         0.75F};

/// Runs a curve over pixels with every special value in every channel at once, and expects alpha
/// and what lies beside the pixel to keep their bits.
template <class MapPixel>
void ExpectOnlyColorsAreWritten(MapPixel mapPixel) {
  constexpr std::uint32_t kAlphaBits = 0x7FA12345U;  // a signalling NaN: arithmetic changes it
  const auto alpha = std::bit_cast<float>(kAlphaBits);
  for (const float blue : kSpecialValues) {
    for (const float green : kSpecialValues) {
      for (const float red : kSpecialValues) {
        std::array<float, 6> memory = {-7.0F, blue, green, red, alpha, -9.0F};
        mapPixel(&memory[1]);
        ASSERT_EQ(memory[0], -7.0F) << blue << ", " << green << ", " << red;
        ASSERT_EQ(Bits(memory[4]), kAlphaBits) << blue << ", " << green << ", " << red;
        ASSERT_EQ(memory[5], -9.0F) << blue << ", " << green << ", " << red;
      }
    }
  }
}

}  // namespace tonemap
