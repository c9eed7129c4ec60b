#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>
#include <zlib.h>

#include "refhost/kestrel/PixelFormats.h"
#include "tests/tools/io/PngFile.h"
#include "tools/quillon/io/FramePixels.h"

using namespace Quillon::Cli;
using orvmediatypes::color::Chromaticity;
using orvmediatypes::color::ColorDescription;
using ::testing::HasSubstr;

namespace {

/// Blue, green, red and alpha codes of a pixel of a BGRA frame.
template <class Sample>
std::array<int, 4> CodesAt(const Still& still, int x, int y) {
  const Sample* pixel = PixelsOf(still.frame).Row<Sample>(y) + 4 * std::ptrdiff_t{x};
  return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

/// One red pixel of 8 bits.
PngPicture RedPixel(std::vector<PngChunk> chunks) {
  PngPicture picture;
  picture.chunks = std::move(chunks);
  picture.rows = {{255, 0, 0}};
  return picture;
}

ColorDescription ColorsWith(std::vector<PngChunk> chunks) {
  return ReadStillFromBytes(RedPixel(std::move(chunks)).File())
      .frame->GetColorSpace()
      .Description();
}

PngChunk Cicp(std::uint8_t primaries, std::uint8_t transfer, std::uint8_t matrix = 0,
              std::uint8_t fullRange = 1) {
  return {"cICP", {primaries, transfer, matrix, fullRange}};
}

PngChunk Gamma(std::uint32_t value) {
  PngChunk chunk{"gAMA", {}};
  AppendBigEndian(chunk.data, value, 4);
  return chunk;
}

/// White, red, green, blue in 1e-5.
PngChunk Chromaticities(std::initializer_list<std::uint32_t> values) {
  PngChunk chunk{"cHRM", {}};
  for (const std::uint32_t value : values) AppendBigEndian(chunk.data, value, 4);
  return chunk;
}

PngChunk Bt709Chromaticities() {
  return Chromaticities({31270, 32900, 64000, 33000, 30000, 60000, 15000, 6000});
}

PngChunk MasteringDisplay(const std::string& name) {
  PngChunk chunk{name, {}};
  for (const int value : {34000, 16000, 13250, 34500, 7500, 3000, 15635, 16450}) {
    AppendBigEndian(chunk.data, static_cast<std::uint64_t>(value), 2);
  }
  AppendBigEndian(chunk.data, 40000000, 4);
  AppendBigEndian(chunk.data, 50, 4);
  return chunk;
}

PngChunk LightLevels(const std::string& name) {
  PngChunk chunk{name, {}};
  AppendBigEndian(chunk.data, 10005000, 4);
  AppendBigEndian(chunk.data, 2030000, 4);
  return chunk;
}

PngChunk IccProfile() {
  // A header of 128 bytes, an empty tag table, and padding that does not shrink much: libpng takes
  // no chunk that is very short.
  Bytes profile(256, 0);
  const auto put = [&profile](std::size_t at, const Bytes& bytes) {
    std::copy(bytes.begin(), bytes.end(), profile.begin() + static_cast<std::ptrdiff_t>(at));
  };
  for (std::size_t i = 128 + 4; i < profile.size(); ++i) {
    profile[i] = static_cast<std::uint8_t>(i * i * 31 / 7);
  }
  put(2, {1, 0});
  put(8, {4});
  put(12, {'m', 'n', 't', 'r', 'R', 'G', 'B', ' ', 'X', 'Y', 'Z', ' '});
  put(36, {'a', 'c', 's', 'p'});
  put(68, {0, 0, 0xF6, 0xD6, 0, 1, 0, 0, 0, 0, 0xD3, 0x2D});
  uLongf size = compressBound(static_cast<uLong>(profile.size()));
  const Bytes name = {'M', 'i', 'n', 'e', 0, 0};
  Bytes data(name.size() + size);
  std::copy(name.begin(), name.end(), data.begin());
  compress(data.data() + name.size(), &size, profile.data(), static_cast<uLong>(profile.size()));
  data.resize(name.size() + size);
  return {"iCCP", data};
}

}  // namespace

TEST(ReadPng, GivesEightBitCodes) {
  PngPicture picture;
  picture.width = 2;
  picture.rows = {{1, 2, 3, 250, 251, 252}};
  const Still still = ReadStillFromBytes(picture.File());
  EXPECT_EQ(still.frame->GetPixelFormat(), RefHost::kBgra8);
  EXPECT_EQ(CodesAt<std::uint8_t>(still, 0, 0), (std::array{3, 2, 1, 255}));
  EXPECT_EQ(CodesAt<std::uint8_t>(still, 1, 0), (std::array{252, 251, 250, 255}));
  EXPECT_TRUE(still.remarks.empty());
}

TEST(ReadPng, GivesSixteenBitCodes) {
  PngPicture picture;
  picture.bitDepth = 16;
  picture.rows = {{0x01, 0x02, 0x03, 0x04, 0xFF, 0xFE}};
  const Still still = ReadStillFromBytes(picture.File());
  EXPECT_EQ(still.frame->GetPixelFormat(), RefHost::kBgra16);
  EXPECT_EQ(CodesAt<std::uint16_t>(still, 0, 0), (std::array{0xFFFE, 0x0304, 0x0102, 0xFFFF}));
}

TEST(ReadPng, ExpandsGreyOfOneBit) {
  PngPicture picture;
  picture.width = 3;
  picture.bitDepth = 1;
  picture.colorType = kGrey;
  picture.rows = {{0b01000000}};
  const Still still = ReadStillFromBytes(picture.File());
  EXPECT_EQ(CodesAt<std::uint8_t>(still, 0, 0), (std::array{0, 0, 0, 255}));
  EXPECT_EQ(CodesAt<std::uint8_t>(still, 1, 0), (std::array{255, 255, 255, 255}));
}

TEST(ReadPng, ExpandsGreyOfSixteenBits) {
  PngPicture picture;
  picture.bitDepth = 16;
  picture.colorType = kGrey;
  picture.rows = {{0xAB, 0xCD}};
  const Still still = ReadStillFromBytes(picture.File());
  EXPECT_EQ(CodesAt<std::uint16_t>(still, 0, 0), (std::array{0xABCD, 0xABCD, 0xABCD, 0xFFFF}));
}

TEST(ReadPng, ExpandsPalettes) {
  PngPicture picture;
  picture.width = 2;
  picture.bitDepth = 4;
  picture.colorType = kPalette;
  picture.chunks = {{"PLTE", {10, 20, 30, 40, 50, 60}}};
  picture.rows = {{0x10}};
  const Still still = ReadStillFromBytes(picture.File());
  EXPECT_EQ(CodesAt<std::uint8_t>(still, 0, 0), (std::array{60, 50, 40, 255}));
  EXPECT_EQ(CodesAt<std::uint8_t>(still, 1, 0), (std::array{30, 20, 10, 255}));
}

TEST(ReadPng, DropsAlphaWithARemarkUnlessItIsOpaque) {
  PngPicture picture;
  picture.width = 2;
  picture.colorType = kRgba;
  picture.rows = {{1, 2, 3, 255, 4, 5, 6, 255}};
  EXPECT_TRUE(ReadStillFromBytes(picture.File()).remarks.empty());
  picture.rows = {{1, 2, 3, 255, 4, 5, 6, 7}};
  const Still still = ReadStillFromBytes(picture.File());
  EXPECT_TRUE(HasRemark(still, "alpha channel dropped"));
  EXPECT_EQ(CodesAt<std::uint8_t>(still, 1, 0), (std::array{6, 5, 4, 255}));
}

TEST(ReadPng, ReadsInterlacedPictures) {
  constexpr int kSide = 13;
  const ScratchFolder folder;
  std::FILE* file = std::fopen((folder / "a.png").c_str(), "wb");
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_IHDR(png, info, kSide, kSide, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_ADAM7, 0, 0);
  png_write_info(png, info);
  std::vector<Bytes> rows(kSide);
  std::vector<png_bytep> pointers;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      for (const int value : {x, y, x * y}) {
        rows[static_cast<std::size_t>(y)].push_back(static_cast<std::uint8_t>(value));
      }
    }
    pointers.push_back(rows[static_cast<std::size_t>(y)].data());
  }
  png_write_image(png, pointers.data());
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  std::fclose(file);

  const Still still = ReadStill(folder / "a.png");
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      EXPECT_EQ(CodesAt<std::uint8_t>(still, x, y), (std::array{x * y, y, x, 255}));
    }
  }
}

TEST(ReadPng, SaysNothingOfColoursWithoutChunks) {
  EXPECT_TRUE(ReadStillFromBytes(RedPixel({}).File()).frame->GetColorSpace().empty());
}

TEST(ReadPng, PrefersCicpToAllOtherChunks) {
  const Still still = ReadStillFromBytes(
      RedPixel({Cicp(9, 16), Gamma(45455), Bt709Chromaticities(), IccProfile()}).File());
  const ColorDescription colors = still.frame->GetColorSpace().Description();
  EXPECT_EQ(colors.primaries, 9);
  EXPECT_EQ(colors.transfer, 16);
  EXPECT_EQ(colors.matrix, 0);
  EXPECT_TRUE(colors.fullRange);
  EXPECT_TRUE(still.remarks.empty());
}

TEST(ReadPng, NamesAnIccProfileAndGoesOn) {
  const Still still =
      ReadStillFromBytes(RedPixel({Gamma(45455), Bt709Chromaticities(), IccProfile()}).File());
  EXPECT_TRUE(HasRemark(still, "ICC profile \"Mine\" ignored"));
  EXPECT_EQ(still.frame->GetColorSpace().Description().transfer, 4);
}

TEST(ReadPng, KnowsTheSrgbChunk) {
  const ColorDescription colors = ColorsWith({{"sRGB", {0}}});
  EXPECT_EQ(colors.primaries, 1);
  EXPECT_EQ(colors.transfer, 13);
}

TEST(ReadPng, PassesOverCicpThatSaysNothing) {
  EXPECT_EQ(ColorsWith({Cicp(2, 2), {"sRGB", {0}}}).transfer, 13);
  EXPECT_EQ(ColorsWith({Cicp(9, 2)}), ColorDescription{});
}

TEST(ReadPng, TakesGammaAndChromaticitiesThatEqualCodePoints) {
  EXPECT_EQ(ColorsWith({Gamma(45455), Bt709Chromaticities()}).primaries, 1);
  EXPECT_EQ(ColorsWith({Gamma(45455), Bt709Chromaticities()}).transfer, 4);
  const PngChunk p3 = Chromaticities({31270, 32900, 68000, 32000, 26500, 69000, 15000, 6000});
  EXPECT_EQ(ColorsWith({Gamma(100000), p3}).primaries, 12);
  EXPECT_EQ(ColorsWith({Gamma(100000), p3}).transfer, 8);
}

TEST(ReadPng, LeavesOtherGammaAndChromaticitiesAlone) {
  EXPECT_EQ(ColorsWith({Gamma(50000), Bt709Chromaticities()}), ColorDescription{});
  EXPECT_EQ(ColorsWith({Gamma(45455)}), ColorDescription{});
  EXPECT_EQ(ColorsWith({Bt709Chromaticities()}), ColorDescription{});
  EXPECT_EQ(ColorsWith({Gamma(45455),
                        Chromaticities({31270, 32900, 66000, 33000, 30000, 60000, 15000, 6000})}),
            ColorDescription{});
}

TEST(ReadPng, RemarksOnAMatrixInCicp) {
  const Still still = ReadStillFromBytes(RedPixel({Cicp(9, 16, 9)}).File());
  EXPECT_EQ(still.frame->GetColorSpace().Description().matrix, 0);
  EXPECT_TRUE(HasRemark(still, "matrix 9"));
}

TEST(ReadPng, ScalesNarrowRangeToSignalValues) {
  PngPicture eight;
  eight.width = 2;
  eight.chunks = {Cicp(9, 16, 0, 0)};
  eight.rows = {{16, 235, 16, 126, 0, 255}};
  const Still still = ReadStillFromBytes(eight.File());
  EXPECT_EQ(still.frame->GetPixelFormat(), orvmediatypes::kLinearFloatBGRA);
  EXPECT_TRUE(still.frame->GetColorSpace().Description().fullRange);
  EXPECT_EQ(PixelAt(still.frame, 0, 0), (Rgb{0, 1, 0}));
  EXPECT_FLOAT_EQ(PixelAt(still.frame, 1, 0)[0], 110.0F / 219.0F);
  EXPECT_FLOAT_EQ(PixelAt(still.frame, 1, 0)[1], -16.0F / 219.0F);
  EXPECT_FLOAT_EQ(PixelAt(still.frame, 1, 0)[2], 239.0F / 219.0F);

  PngPicture sixteen;
  sixteen.bitDepth = 16;
  sixteen.chunks = {Cicp(9, 16, 0, 0)};
  sixteen.rows = {{0x10, 0x00, 0xEB, 0x00, 0x10, 0x00}};
  EXPECT_EQ(PixelAt(ReadStillFromBytes(sixteen.File()).frame, 0, 0), (Rgb{0, 1, 0}));
}

TEST(ReadPng, ReadsTheMasteringDisplayInBothSpellings) {
  for (const char* name : {"mDCV", "mDCv"}) {
    const ColorDescription colors = ColorsWith({Cicp(9, 16), MasteringDisplay(name)});
    const auto expectNear = [](const Chromaticity& point, double x, double y) {
      EXPECT_NEAR(point.x, x, 1e-9);
      EXPECT_NEAR(point.y, y, 1e-9);
    };
    expectNear(colors.masteringChromaticities.red, 0.68, 0.32);
    expectNear(colors.masteringChromaticities.green, 0.265, 0.69);
    expectNear(colors.masteringChromaticities.blue, 0.15, 0.06);
    expectNear(colors.masteringChromaticities.white, 0.3127, 0.329);
    EXPECT_FLOAT_EQ(colors.masteringMaxLuminance, 4000.0F);
    EXPECT_FLOAT_EQ(colors.masteringMinLuminance, 0.005F);
  }
}

TEST(ReadPng, ReadsContentLightInBothSpellings) {
  for (const char* name : {"cLLI", "cLLi"}) {
    const Still still = ReadStillFromBytes(RedPixel({Cicp(9, 16), LightLevels(name)}).File());
    EXPECT_FLOAT_EQ(still.light.maxCLL, 1000.5F);
    EXPECT_FLOAT_EQ(still.light.maxFALL, 203.0F);
  }
  EXPECT_EQ(ReadStillFromBytes(RedPixel({Cicp(9, 16)}).File()).light, ContentLight{});
}

TEST(ReadPng, RemarksOnColourChunksOfWrongLength) {
  PngChunk mastering = MasteringDisplay("mDCV");
  mastering.data.pop_back();
  const Still still =
      ReadStillFromBytes(RedPixel({{"cICP", {9, 16, 0}}, mastering, {"cLLI", {1, 2}}}).File());
  EXPECT_TRUE(HasRemark(still, "cICP chunk of 3 bytes ignored"));
  EXPECT_TRUE(HasRemark(still, "mDCV chunk of 23 bytes ignored"));
  EXPECT_TRUE(HasRemark(still, "cLLI chunk of 2 bytes ignored"));
  EXPECT_EQ(still.frame->GetColorSpace().Description(), ColorDescription{});
}

TEST(ReadPng, IgnoresColourChunksWithAWrongCrcAndNamesThem) {
  for (const std::string name : {"cICP", "mDCV", "cLLI", "gAMA"}) {
    Bytes file = RedPixel({{"gAMA", {0, 0, 0xB1, 0x8F}},
                           Cicp(9, 16),
                           MasteringDisplay("mDCV"),
                           LightLevels("cLLI")})
                     .File();
    const auto chunk = std::search(file.begin(), file.end(), name.begin(), name.end());
    ASSERT_NE(chunk, file.end());
    *(chunk + 5) ^= 0x01;  // a bit of what it says
    const Still still = ReadStillFromBytes(file);
    const ColorDescription colors = still.frame->GetColorSpace().Description();
    EXPECT_EQ(colors.transfer, name == "cICP" ? 0 : 16) << name;
    EXPECT_EQ(colors.masteringMaxLuminance > 0.0F, name != "mDCV") << name;
    EXPECT_FLOAT_EQ(still.light.maxCLL, name == "cLLI" ? 0.0F : 1000.5F) << name;
    EXPECT_TRUE(HasRemark(still, "PNG chunk " + name + " ignored: it is damaged")) << name;
    EXPECT_EQ(still.remarks.size(), 1U) << name;
  }
}

TEST(ReadPng, IgnoresADamagedChunkBehindThePixels) {
  Bytes file = PngFromChunks({{"tEXt", {'a', 0, 'b'}}, {"IEND", {}}});
  file[19] ^= 0x55;
  const Bytes picture = RedPixel({Cicp(9, 16)}).File();
  Bytes joined(picture.begin(), picture.end() - 12);
  joined.insert(joined.end(), file.begin() + 8, file.end());
  const Still still = ReadStillFromBytes(joined);
  EXPECT_EQ(still.frame->GetColorSpace().Description().transfer, 16);
  EXPECT_TRUE(HasRemark(still, "PNG chunk tEXt ignored"));
}

TEST(ReadPng, RefusesPixelsWithAWrongCrc) {
  Bytes file = RedPixel({}).File();
  file[file.size() - 14] ^= 0x55;
  const auto failure = FailureOf([&] { ReadStillFromBytes(file); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, StillErrorKind::CannotRead);
  EXPECT_THAT(failure->message, HasSubstr("CRC"));
}

TEST(ReadPng, RefusesSizesBeyondTheLimit) {
  PngPicture picture = RedPixel({});
  picture.width = 70000;
  EXPECT_EQ(FailureOf([&] { ReadStillFromBytes(picture.File()); })->kind,
            StillErrorKind::NotSupported);
  picture.width = picture.height = 60000;
  EXPECT_EQ(FailureOf([&] { ReadStillFromBytes(picture.File()); })->kind,
            StillErrorKind::NotSupported);
}

TEST(ReadPng, RefusesALargePictureWithFewPixels) {
  PngPicture picture = RedPixel({});
  picture.width = picture.height = 16384;
  const auto failure = FailureOf([&] { ReadStillFromBytes(picture.File()); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, StillErrorKind::CannotRead);
  EXPECT_THAT(failure->message, HasSubstr("16384x16384 pixels cannot be in a file of "));
}

TEST(ReadPng, ReadsPixelsThatAreAsSmallAsDeflateMakesThem) {
  PngPicture picture = RedPixel({});
  picture.width = picture.height = 2000;
  picture.rows.assign(2000, Bytes(6000, 0));
  const Bytes file = picture.File();
  ASSERT_LT(file.size(), 2000 * 2000 * 3 / 900);
  EXPECT_EQ(ReadStillFromBytes(file).frame->GetBounds().width, 2000);
}
