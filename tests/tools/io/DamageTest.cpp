#include <filesystem>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/io/PngFile.h"
#include "tools/quillon/io/WriteStill.h"

using namespace Quillon::Cli;
using ::testing::HasSubstr;

namespace {

Bytes Written(const std::string& name, std::optional<int> depth) {
  StillOutput output;
  output.frame =
      MakePicture(48, 40, Tagged(9, 16), [](int x, int y) { return Gradient(x, y, 48, 40); });
  output.light = {1000.0F, 200.0F};
  output.depth = depth;
  const ScratchFolder folder;
  WriteStill(output, folder / name);
  return ReadBytes(folder / name);
}

Bytes RadianceFile() {
  const std::string header = "#?RADIANCE\nEXPOSURE=2\nFORMAT=32-bit_rle_rgbe\n\n-Y 20 +X 16\n";
  Bytes bytes(header.begin(), header.end());
  for (int y = 0; y < 20; ++y) {
    bytes.insert(bytes.end(), {2, 2, 0, 16});
    for (std::uint8_t component = 0; component < 4; ++component) {
      bytes.insert(bytes.end(), {128 + 8, static_cast<std::uint8_t>(100 + component), 8});
      for (std::uint8_t i = 0; i < 8; ++i) bytes.push_back(static_cast<std::uint8_t>(i + y));
    }
  }
  return bytes;
}

struct Sample {
  std::string name;
  Bytes bytes;
};

std::vector<Sample> Samples() {
  return {{"half EXR", Written("a.exr", 16)},     {"float EXR", Written("a.exr", 32)},
          {"8-bit PNG", Written("a.png", 8)},     {"16-bit PNG", Written("a.png", 16)},
          {"10-bit AVIF", Written("a.avif", 10)}, {"Radiance", RadianceFile()}};
}

}  // namespace

TEST(DamagedStill, IsWholeBeforeItIsDamaged) {
  for (const Sample& sample : Samples()) {
    EXPECT_NO_THROW(ReadStillFromBytes(sample.bytes)) << sample.name;
  }
}

TEST(DamagedStill, CannotBeReadWhenItIsCutShort) {
  for (const Sample& sample : Samples()) {
    const std::size_t size = sample.bytes.size();
    const std::size_t step = std::max<std::size_t>(1, size / 150);
    std::vector<std::size_t> lengths;
    for (std::size_t length = 0; length < std::min<std::size_t>(size, 64); ++length) {
      lengths.push_back(length);
    }
    for (std::size_t length = 64; length < size; length += step) lengths.push_back(length);
    for (std::size_t missing = 1; missing <= 16; ++missing) lengths.push_back(size - missing);
    for (const std::size_t length : lengths) {
      const Bytes cut(sample.bytes.begin(),
                      sample.bytes.begin() + static_cast<std::ptrdiff_t>(length));
      const auto failure = FailureOf([&] { ReadStillFromBytes(cut); });
      ASSERT_TRUE(failure) << sample.name << " of " << length << " bytes";
      EXPECT_EQ(failure->kind, StillErrorKind::CannotRead)
          << sample.name << " of " << length << " bytes: " << failure->message;
    }
  }
}

TEST(DamagedStill, NeverEndsInAnythingButAStillError) {
  std::mt19937 random(20240229);
  for (const Sample& sample : Samples()) {
    std::uniform_int_distribution<std::size_t> position(0, sample.bytes.size() - 1);
    // Damage to the head of a file leads further than damage to its pixels.
    std::uniform_int_distribution<std::size_t> early(
        0, std::min<std::size_t>(sample.bytes.size(), 400) - 1);
    std::uniform_int_distribution<int> value(0, 255);
    int refused = 0;
    for (int round = 0; round < 300; ++round) {
      Bytes damaged = sample.bytes;
      for (int flips = round % 4; flips >= 0; --flips) {
        damaged[round % 2 == 0 ? position(random) : early(random)] =
            static_cast<std::uint8_t>(value(random));
      }
      try {
        ReadStillFromBytes(damaged);
      } catch (const StillError&) {
        ++refused;
      }
    }
    EXPECT_GT(refused, 0) << sample.name;
  }
}

TEST(DamagedStill, IsNamedWithWhatIsWrongAndARemedy) {
  const ScratchFolder folder;
  Bytes bytes = Written("a.png", 8);
  bytes.resize(bytes.size() / 2);
  WriteBytes(folder / "torn.png", bytes);
  const auto failure = FailureOf([&] { ReadStill(folder / "torn.png"); });
  ASSERT_TRUE(failure);
  EXPECT_THAT(failure->message, HasSubstr("torn.png: damaged or incomplete: "));
  EXPECT_THAT(failure->message, HasSubstr("; get a whole copy"));
}

TEST(ReadStill, RefusesWhatIsNoPictureFile) {
  const ScratchFolder folder;
  WriteBytes(folder / "empty.exr", {});
  WriteBytes(folder / "text.png", Bytes(100, 'x'));
  const auto check = [](const std::filesystem::path& path, StillErrorKind kind,
                        const std::string& words) {
    const auto failure = FailureOf([&] { ReadStill(path); });
    ASSERT_TRUE(failure) << path;
    EXPECT_EQ(failure->kind, kind) << path;
    EXPECT_THAT(failure->message, HasSubstr(words));
    EXPECT_THAT(failure->message, HasSubstr(path.string()));
  };
  check(folder / "missing.exr", StillErrorKind::CannotRead, "no such file");
  check(folder / "empty.exr", StillErrorKind::CannotRead, "it is empty");
  check(folder / "text.png", StillErrorKind::CannotRead, "no EXR, Radiance HDR, PNG or AVIF");
  check(folder / "", StillErrorKind::CannotRead, "it is a folder");
  check("/dev/zero", StillErrorKind::CannotRead, "not a regular file");
}

TEST(ReadStill, GoesByContentAndNotByName) {
  const ScratchFolder folder;
  WriteBytes(folder / "a.exr", Written("a.png", 8));
  EXPECT_EQ(ReadStill(folder / "a.exr").frame->GetBounds().width, 48);
}
