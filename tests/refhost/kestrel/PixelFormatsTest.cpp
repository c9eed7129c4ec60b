#include <set>
#include <utility>

#include <gtest/gtest.h>

#include "refhost/kestrel/PixelFormats.h"
#include "tests/refhost/kestrel/Frames.h"

using RefHost::ChromaFormat;
using RefHost::DescribeFormat;

namespace {

std::uint32_t DepthCode(PixelFormat format) { return format.descriptor >> 1U & 7U; }
std::uint32_t LayoutCode(PixelFormat format) { return format.descriptor >> 19U & 3U; }

TEST(PixelFormats, AreAllDifferent) {
  std::set<std::pair<std::uint32_t, std::uint32_t>> formats;
  for (const auto& list : {InterleavedFormats(), YCbCrFormats()}) {
    for (const auto& [name, format] : list) formats.emplace(format.fourCC, format.descriptor);
  }
  EXPECT_EQ(formats.size(), 4U + 24U);
}

TEST(PixelFormats, PutLayoutAndDepthIntoTheDescriptor) {
  EXPECT_EQ(LayoutCode(RefHost::kBgraHalf), 1U);
  EXPECT_EQ(DepthCode(RefHost::kBgraHalf), 3U);
  EXPECT_EQ(DepthCode(RefHost::kBgraFloat), 5U);
  EXPECT_EQ(LayoutCode(RefHost::PlanarYCbCr(ChromaFormat::C422, 10)), 2U);
  EXPECT_EQ(LayoutCode(RefHost::SemiPlanarYCbCr(ChromaFormat::C422, 10)), 3U);
  EXPECT_EQ(DepthCode(RefHost::PlanarYCbCr(ChromaFormat::C420, 8)), 0U);
  EXPECT_EQ(DepthCode(RefHost::PlanarYCbCr(ChromaFormat::C420, 10)), 1U);
  EXPECT_EQ(DepthCode(RefHost::PlanarYCbCr(ChromaFormat::C420, 12)), 6U);
  EXPECT_EQ(DepthCode(RefHost::PlanarYCbCr(ChromaFormat::C420, 16)), 2U);
}

TEST(DescribeFormat, TellsInterleavedFormatsApart) {
  const auto half = InfoOf(RefHost::kBgraHalf);
  EXPECT_FALSE(half.IsYCbCr());
  EXPECT_EQ(half.sampleType, RefHost::SampleType::Half);
  EXPECT_EQ(half.bytesPerSample, 2);
  EXPECT_EQ(half.planeCount, 1);
  EXPECT_EQ(half.SamplesPerPosition(0), 4);
  EXPECT_EQ(InfoOf(RefHost::kBgra16).sampleType, RefHost::SampleType::UnsignedInteger);
  EXPECT_EQ(InfoOf(RefHost::kBgra8).bytesPerSample, 1);
  EXPECT_EQ(InfoOf(RefHost::kBgraFloat).bytesPerSample, 4);
}

TEST(DescribeFormat, TellsPlanesDepthAndChroma) {
  const auto planar = InfoOf(RefHost::PlanarYCbCr(ChromaFormat::C420, 12));
  EXPECT_TRUE(planar.IsYCbCr());
  EXPECT_EQ(planar.bits, 12);
  EXPECT_EQ(planar.bytesPerSample, 2);
  EXPECT_EQ(planar.planeCount, 3);
  EXPECT_EQ(planar.ChromaShiftX(), 1);
  EXPECT_EQ(planar.ChromaShiftY(), 1);
  EXPECT_EQ(planar.SamplesPerPosition(1), 1);

  const auto semiPlanar = InfoOf(RefHost::SemiPlanarYCbCr(ChromaFormat::C422, 8));
  EXPECT_EQ(semiPlanar.planeCount, 2);
  EXPECT_EQ(semiPlanar.ChromaShiftX(), 1);
  EXPECT_EQ(semiPlanar.ChromaShiftY(), 0);
  EXPECT_EQ(semiPlanar.SamplesPerPosition(0), 1);
  EXPECT_EQ(semiPlanar.SamplesPerPosition(1), 2);

  const auto full = InfoOf(RefHost::PlanarYCbCr(ChromaFormat::C444, 16));
  EXPECT_EQ(full.ChromaShiftX(), 0);
  EXPECT_EQ(full.ChromaShiftY(), 0);
}

TEST(DescribeFormat, KnowsNothingElse) {
  EXPECT_FALSE(DescribeFormat({}).has_value());
  EXPECT_FALSE(DescribeFormat({RefHost::kBgraFloat.fourCC, 0x0008013BU}).has_value());
  EXPECT_FALSE(
      DescribeFormat({RefHost::kBgraFloat.fourCC + 1, RefHost::kBgraFloat.descriptor}).has_value());
  for (const int bits : {0, -1, 9, 14, 32}) {
    EXPECT_FALSE(DescribeFormat(RefHost::PlanarYCbCr(ChromaFormat::C420, bits)).has_value())
        << bits;
    EXPECT_FALSE(DescribeFormat(RefHost::SemiPlanarYCbCr(ChromaFormat::C444, bits)).has_value())
        << bits;
  }
}

}  // namespace
