#include "tests/refhost/chromant/Samples.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "host/chromant/Conversion.h"

using orvmediatypes::color::ColorSpace;

std::vector<Rgb> Lattice(int steps, float lowest, float highest) {
  std::vector<Rgb> pixels;
  const auto level = [=](int i) {
    return std::lerp(lowest, highest, static_cast<float>(i) / static_cast<float>(steps));
  };
  for (int r = 0; r <= steps; ++r) {
    for (int g = 0; g <= steps; ++g) {
      for (int b = 0; b <= steps; ++b) pixels.push_back({level(r), level(g), level(b)});
    }
  }
  return pixels;
}

namespace {

template <class Component>
constexpr orvmediatypes::PixelFormat kFormat = kFloatBGRA;
template <>
constexpr orvmediatypes::PixelFormat kFormat<std::uint8_t> = k8BitBGRA;
template <>
constexpr orvmediatypes::PixelFormat kFormat<std::uint16_t> = k16BitBGRA;

template <class Component>
std::vector<std::array<Component, 3>> ConvertedInPlace(
    const std::vector<std::array<Component, 3>>& pixels, const ColorSpace& from,
    const ColorSpace& to, std::uint32_t whiteNits) {
  std::vector<Component> bgra;
  for (const auto& pixel : pixels) {
    bgra.insert(bgra.end(), {pixel[2], pixel[1], pixel[0], Component{1}});
  }
  const int rowBytes = static_cast<int>(bgra.size() * sizeof(Component));
  EXPECT_EQ(CHR::ConvertFrame(bgra.data(), bgra.data(), static_cast<int>(pixels.size()), 1, from,
                              kFormat<Component>, rowBytes, to, kFormat<Component>, rowBytes,
                              White(whiteNits)),
            0);
  std::vector<std::array<Component, 3>> result;
  for (std::size_t i = 0; i < bgra.size(); i += 4) {
    result.push_back({bgra[i + 2], bgra[i + 1], bgra[i]});
  }
  return result;
}

}  // namespace

std::vector<Rgb> Converted(const std::vector<Rgb>& pixels, const ColorSpace& from,
                           const ColorSpace& to, std::uint32_t whiteNits) {
  return ConvertedInPlace(pixels, from, to, whiteNits);
}

template <class Component>
std::vector<std::array<Component, 3>> IntegerLattice(int steps) {
  std::vector<std::array<Component, 3>> pixels;
  for (const Rgb& pixel : Lattice(steps, 0.0F, std::numeric_limits<Component>::max())) {
    pixels.push_back({static_cast<Component>(pixel[0]), static_cast<Component>(pixel[1]),
                      static_cast<Component>(pixel[2])});
  }
  return pixels;
}

template <class Component>
std::vector<std::array<Component, 3>> ConvertedIntegers(
    const std::vector<std::array<Component, 3>>& pixels, const ColorSpace& from,
    const ColorSpace& to) {
  return ConvertedInPlace(pixels, from, to, 203);
}

template std::vector<std::array<std::uint8_t, 3>> IntegerLattice(int);
template std::vector<std::array<std::uint16_t, 3>> IntegerLattice(int);
template std::vector<std::array<std::uint8_t, 3>> ConvertedIntegers(
    const std::vector<std::array<std::uint8_t, 3>>&, const ColorSpace&, const ColorSpace&);
template std::vector<std::array<std::uint16_t, 3>> ConvertedIntegers(
    const std::vector<std::array<std::uint16_t, 3>>&, const ColorSpace&, const ColorSpace&);

void ExpectNear(const std::vector<Rgb>& actual, const std::vector<Rgb>& expected, double relative) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    const Rgb& is = actual[i];
    const Rgb& should = expected[i];
    const double allowed =
        relative * std::max({std::abs(should[0]), std::abs(should[1]), std::abs(should[2])});
    for (std::size_t c = 0; c < 3; ++c) {
      const double error = std::abs(static_cast<double>(is[c]) - should[c]);
      ASSERT_TRUE(error <= allowed)  // false for NaN
          << "pixel " << i << ": " << is[0] << ' ' << is[1] << ' ' << is[2] << " instead of "
          << should[0] << ' ' << should[1] << ' ' << should[2];
    }
  }
}
