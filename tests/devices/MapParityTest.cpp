// Whole calls on devices against the same calls on the processor: the same bits. By BT.2390 the
// processor goes through lookup tables, which devices do not have; there the same curve with PQ in
// full stands in for it.

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cpu/GamutCompression.h"
#include "curves/Bt2390Linear.h"
#include "engine/Quillon.h"
#include "host/chromant/Applicability.h"
#include "host/chromant/Conversion.h"
#include "host/kestrel/FrameManipulators.h"
#include "refhost/ironlane/opencl/OpenClDevice.h"
#include "refhost/kestrel/PixelFormats.h"
#include "tests/devices/DeviceFrames.h"
#include "tests/devices/EveryDevice.h"
#include "tests/refhost/Spaces.h"
#include "tonemap/Algorithms.h"
#include "tonemap/SupportParams.h"

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::GamutCompressionAlgorithmType;
using orvmediatypes::color::ToneMapAlgorithmType;
using PX::GamutMappingUtils::GamutMappingSettings;

namespace {

/// All other tests of devices run on those there are, and are none where there is none.
TEST(Devices, AreThere) {
  EXPECT_FALSE(EveryDevice().empty())
      << "no device that runs kernels; the Debian package pocl-opencl-icd brings one";
}

std::vector<ToneMapAlgorithmType> AllAlgorithms() {
  std::vector<ToneMapAlgorithmType> all = {ToneMapAlgorithmType::None,
                                           ToneMapAlgorithmType::Automatic};
  for (const Quillon::ToneCurveFacts& curve : Quillon::kToneCurves) all.push_back(curve.type);
  return all;
}

std::vector<GamutCompressionAlgorithmType> AllGamutCompressions() {
  std::vector<GamutCompressionAlgorithmType> all = {GamutCompressionAlgorithmType::None};
  for (const Quillon::GamutCurveFacts& curve : Quillon::kGamutCurves) all.push_back(curve.type);
  return all;
}

using Case = std::tuple<TestDevice, ToneMapAlgorithmType, GamutCompressionAlgorithmType>;

GamutMappingSettings SettingsFor(const ColorSpace& source, const ColorSpace& destination,
                                 ToneMapAlgorithmType algorithm,
                                 GamutCompressionAlgorithmType gamut) {
  GamutMappingSettings settings;
  settings.algorithmType = gamut;
  auto& toneMap = settings.toneMapSettings;
  toneMap.sourceColorSpace = source;
  toneMap.destinationColorSpace = destination;
  toneMap.colorManagementSettings = White(203);
  // Full scale, or the peak of linear light.
  const float peakNits = static_cast<float>(source.Description().peakLuminance);
  toneMap.controls.peak = source.IsLinear() ? peakNits / 203.0F : 1.0F;
  toneMap.controls.peakGain = 1.1F;
  toneMap.controls.colorPreservation = 0.3F;
  toneMap.knee = 0.4F;
  toneMap.algorithmType = algorithm;
  return settings;
}

bool IsBt2390(ToneMapAlgorithmType algorithm) {
  return algorithm == ToneMapAlgorithmType::ITU2390MaxRGB ||
         algorithm == ToneMapAlgorithmType::ITU2390RGBByChannel;
}

/// BT.2390 with PQ in full, as the settings resolve it.
void ToneMapBt2390(const GamutMappingSettings& settings, Pixels& pixels) {
  auto resolved = settings.toneMapSettings;
  Quillon::SupportVector p;
  Quillon::GetToneMappingSupportParams(resolved, p);
  const Bt2390LinearParams params = {p[0],
                                     p[1],
                                     p[2],
                                     p[3],
                                     p[4],
                                     resolved.controls.peakGain,
                                     resolved.controls.peak,
                                     resolved.controls.colorPreservation,
                                     p[10],
                                     p[11],
                                     p[12]};
  for (Pixel& pixel : pixels) {
    if (resolved.algorithmType == ToneMapAlgorithmType::ITU2390MaxRGB) {
      ToneMapBt2390MaxRGB(pixel.data(), params);
    } else {
      ToneMapBt2390ByChannel(pixel.data(), params);
    }
  }
}

void CompressGamut(const GamutMappingSettings& settings, Pixels& pixels) {
  Quillon::SupportVector params;
  ASSERT_EQ(Quillon::GetGamutCompressionSupportParams(settings, params), 0);
  for (Pixel& pixel : pixels) {
    if (settings.algorithmType == GamutCompressionAlgorithmType::Reinhard) {
      Quillon::GamutCompressionReinhard{}(pixel.data(), params, settings);
    } else {
      Quillon::GamutCompressionDesaturation{}(pixel.data(), params, settings);
    }
  }
}

/// What the processor makes of the source.
Pixels Expected(const PX::VideoFrameRef& source, const GamutMappingSettings& settings, int width,
                int height) {
  const ColorSpace& to = settings.toneMapSettings.destinationColorSpace;
  PX::VideoFrameRef result =
      MakeSystemFrame(RefHost::kBgraFloat, width, height, to, NotablePixels(width, height, 0));
  if (!IsBt2390(settings.toneMapSettings.algorithmType)) {
    EXPECT_EQ(Quillon::ApplyGamutMapping(source, settings, result), 0);
    return PixelsOf(result);
  }
  const ColorSpace linear = CHR::ORVColorSpaceToEquivalentLinearColorSpace(source->GetColorSpace());
  const auto working =
      MakeSystemFrame(RefHost::kBgraFloat, width, height, linear, PixelsOf(result));
  EXPECT_EQ(KS::VideoFrameManipulators::CopyFrame(source, working, 4, White(203)), 0);
  Pixels pixels = PixelsOf(working);
  if (CHR::IsGamutCompressionApplicable(settings)) CompressGamut(settings, pixels);
  EXPECT_TRUE(CHR::IsToneMappingApplicable(settings.toneMapSettings));
  ToneMapBt2390(settings, pixels);
  EXPECT_EQ(KS::VideoFrameManipulators::CopyFrame(
                MakeSystemFrame(RefHost::kBgraFloat, width, height, linear, pixels), result, 4,
                White(203)),
            0);
  return PixelsOf(result);
}

class MapOnDevice : public testing::TestWithParam<Case> {
 protected:
  void SetUp() override { ASSERT_NE(device_, nullptr); }

  void ExpectSameAsProcessor(const ColorSpace& from, const ColorSpace& to, int width, int height) {
    const auto& [device, algorithm, gamut] = GetParam();
    const GamutMappingSettings settings = SettingsFor(from, to, algorithm, gamut);
    const auto source =
        MakeSystemFrame(RefHost::kBgraFloat, width, height, from, NotablePixels(width, height, 77));
    const auto onGPU = OnGPU(device_, source);
    PX::VideoFrameRef result = MakeGPUFrame(device_, RefHost::kBgraFloat, width, height, to);
    ASSERT_EQ(Quillon::ApplyGamutMapping(onGPU, settings, result), 0);
    ExpectComputed(*device_, PixelsOf(result), Expected(source, settings, width, height));
  }

  const std::shared_ptr<RefHost::GPUDevice> device_ = std::get<0>(GetParam()).Open();
};

TEST_P(MapOnDevice, GivesPQTheBitsOfTheProcessor) {
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 3}, {17, 5}, {64, 1}, {70, 35}}) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    ExpectSameAsProcessor(Space(9, 16, 1000), Space(1, 13), width, height);
  }
}

TEST_P(MapOnDevice, GivesHlgTheBitsOfTheProcessor) {
  ExpectSameAsProcessor(Space(9, 18, 1000), Space(1, 1), 33, 9);
}

TEST_P(MapOnDevice, GivesLinearLightTheBitsOfTheProcessor) {
  ExpectSameAsProcessor(Space(9, 8, 4000), Space(12, 16, 600), 33, 9);
}

TEST_P(MapOnDevice, GivesAWholeFrameTheBitsOfTheProcessor) {
  ExpectSameAsProcessor(Space(9, 16, 1000), Space(1, 13), 1920, 1080);
}

std::string NameOfCase(const testing::TestParamInfo<Case>& info) {
  const auto& [device, algorithm, gamut] = info.param;
  return device.TestName() + "_tone" + std::to_string(static_cast<int>(algorithm)) + "_gamut" +
         std::to_string(static_cast<int>(gamut));
}

INSTANTIATE_TEST_SUITE_P(EveryAlgorithm, MapOnDevice,
                         testing::Combine(testing::ValuesIn(EveryDevice()),
                                          testing::ValuesIn(AllAlgorithms()),
                                          testing::ValuesIn(AllGamutCompressions())),
                         NameOfCase);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(MapOnDevice);

class GPUPipeline : public OnDevice {};

TEST_P(GPUPipeline, RefusesFramesInDifferentPlaces) {
  const Pixels pixels = NotablePixels(4, 4, 1);
  auto inMemory = MakeSystemFrame(RefHost::kBgraFloat, 4, 4, Space(9, 16), pixels);
  auto onGPU = OnGPU(device_, inMemory);
  const auto settings =
      SettingsFor(Space(9, 16), Space(1, 13), ToneMapAlgorithmType::HuePreservationDesaturation,
                  GamutCompressionAlgorithmType::None);
  constexpr int kNotSupported = static_cast<int>(0xA00F000CU);
  EXPECT_EQ(Quillon::ApplyGamutMapping(inMemory, settings, onGPU), kNotSupported);
  EXPECT_EQ(Quillon::ApplyGamutMapping(onGPU, settings, inMemory), kNotSupported);
  ExpectSameBits(PixelsOf(onGPU), pixels);
}

TEST_P(GPUPipeline, WorksOnALinearSourceInPlace) {
  const auto settings = SettingsFor(Space(9, 8, 4000), Space(9, 8, 600),
                                    ToneMapAlgorithmType::HuePreservationDesaturation,
                                    GamutCompressionAlgorithmType::None);
  const auto inMemory =
      MakeSystemFrame(RefHost::kBgraFloat, 9, 4, Space(9, 8, 4000), NotablePixels(9, 4, 1));
  auto frame = OnGPU(device_, inMemory);
  ASSERT_EQ(Quillon::ApplyGamutMapping(frame, settings, frame), 0);
  PX::VideoFrameRef expected = inMemory;
  ASSERT_EQ(Quillon::ApplyGamutMapping(inMemory, settings, expected), 0);
  ExpectComputed(*device_, PixelsOf(frame), PixelsOf(expected));
}

TEST_P(GPUPipeline, MapsHalfFramesAndRoundsThemBetweenSteps) {
  const auto settings = SettingsFor(Space(9, 8, 4000), Space(9, 8, 600),
                                    ToneMapAlgorithmType::HuePreservationDesaturation,
                                    GamutCompressionAlgorithmType::None);
  const Pixels pixels = RoundedToHalf(NotablePixels(33, 9, 5));
  auto half = OnGPU(device_, MakeSystemFrame(RefHost::kBgraHalf, 33, 9, Space(9, 8, 4000), pixels));
  ASSERT_EQ(Quillon::ApplyGamutMapping(half, settings, half), 0);
  auto whole = MakeSystemFrame(RefHost::kBgraFloat, 33, 9, Space(9, 8, 4000), pixels);
  ASSERT_EQ(Quillon::ApplyGamutMapping(whole, settings, whole), 0);
  ExpectComputed(*device_, PixelsOf(half), RoundedToHalf(PixelsOf(whole)));
}

TEST_P(GPUPipeline, CopiesWhereNothingApplies) {
  const auto settings = SettingsFor(Space(9, 16), Space(9, 16), ToneMapAlgorithmType::None,
                                    GamutCompressionAlgorithmType::None);
  const Pixels pixels = NotablePixels(9, 4, 2);
  const auto source =
      OnGPU(device_, MakeSystemFrame(RefHost::kBgraFloat, 9, 4, Space(9, 16), pixels));
  PX::VideoFrameRef destination = MakeGPUFrame(device_, RefHost::kBgraFloat, 9, 4, Space(9, 16));
  ASSERT_EQ(Quillon::ApplyGamutMapping(source, settings, destination), 0);
  ExpectSameBits(PixelsOf(destination), pixels);
}

TEST_P(GPUPipeline, RefusesFramesOnDifferentDevices) {
  if (GetParam().platformKind != IL::kPlatformOpenCl) GTEST_SKIP() << "not an OpenCL device";
  // The same hardware, but another context: neither knows the other's memory.
  const auto other = RefHost::OpenOpenClDevice(GetParam().ordinal);
  ASSERT_NE(other, nullptr);
  const Pixels pixels = NotablePixels(9, 4, 2);
  for (const auto gamut :
       {GamutCompressionAlgorithmType::None, GamutCompressionAlgorithmType::Desaturation}) {
    const auto settings = SettingsFor(Space(9, 16), Space(1, 13),
                                      ToneMapAlgorithmType::HuePreservationDesaturation, gamut);
    const auto source =
        OnGPU(device_, MakeSystemFrame(RefHost::kBgraFloat, 9, 4, Space(9, 16), pixels));
    PX::VideoFrameRef destination =
        OnGPU(other, MakeSystemFrame(RefHost::kBgraFloat, 9, 4, Space(1, 13), pixels));
    EXPECT_LT(Quillon::ApplyGamutMapping(source, settings, destination), 0);
    ExpectSameBits(PixelsOf(destination), pixels);
    ExpectSameBits(PixelsOf(source), pixels);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryDevice, GPUPipeline, testing::ValuesIn(EveryDevice()),
                         DeviceTestName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(GPUPipeline);

}  // namespace
