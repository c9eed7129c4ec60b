// Whole calls of the engine on a scripted driver: what they give to it. No kernel runs here.

#include <set>
#include <string>

#include "engine/Quillon.h"
#include "host/kestrel/FrameManipulators.h"
#include "refhost/ironlane/Devices.h"
#include "refhost/ironlane/cuda/CudaDevice.h"
#include "refhost/kestrel/PixelFormats.h"
#include "tests/devices/DeviceFrames.h"
#include "tests/refhost/Spaces.h"
#include "tests/refhost/ironlane/cuda/CudaTest.h"

namespace {

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::GamutCompressionAlgorithmType;
using orvmediatypes::color::ToneMapAlgorithmType;
using ::testing::ElementsAre;

class CudaCalls : public CudaTest {
 protected:
  void SetUp() override {
    QUILLON_NEEDS_PTX();
    CudaTest::SetUp();
    driver_->devices.resize(2);
  }

  static PX::GamutMappingUtils::GamutMappingSettings SettingsFor(const ColorSpace& from,
                                                                 const ColorSpace& to,
                                                                 ToneMapAlgorithmType algorithm) {
    PX::GamutMappingUtils::GamutMappingSettings settings;
    settings.algorithmType = GamutCompressionAlgorithmType::Desaturation;
    auto& toneMap = settings.toneMapSettings;
    toneMap.sourceColorSpace = from;
    toneMap.destinationColorSpace = to;
    toneMap.colorManagementSettings = White(203);
    toneMap.controls.peak = from.IsLinear() ? 4.9F : 1.0F;
    toneMap.knee = 0.4F;
    toneMap.algorithmType = algorithm;
    return settings;
  }

  std::multiset<std::string> Launched() const {
    std::multiset<std::string> names;
    for (const scripted::Launch& launch : driver_->launches) names.insert(launch.kernel);
    return names;
  }
};

TEST_F(CudaCalls, TakeNoMemoryAndWaitForNothingTheSecondTime) {
  for (const bool hasPools : {true, false}) {
    SCOPED_TRACE(hasPools);
    driver_->devices[0].hasPools = hasPools;
    const auto device = RefHost::OpenCudaDevice(0);
    const auto source = MakeGPUFrame(device, RefHost::kBgraHalf, 33, 17, Space(9, 16));
    PX::VideoFrameRef destination = MakeGPUFrame(device, RefHost::kBgraHalf, 33, 17, Space(1, 13));
    const auto settings = SettingsFor(Space(9, 16), Space(1, 13), ToneMapAlgorithmType::ITU2446A);
    ASSERT_EQ(Quillon::ApplyGamutMapping(source, settings, destination), 0) << Trace();
    ASSERT_EQ(device->Finish(), 0);
    const int reservations = driver_->reservations;
    const int waits = driver_->waits;
    for (int call = 0; call < 3; ++call) {
      ASSERT_EQ(Quillon::ApplyGamutMapping(source, settings, destination), 0) << Trace();
    }
    EXPECT_EQ(driver_->reservations, reservations);
    EXPECT_EQ(driver_->waits, waits);
    EXPECT_EQ(device->Finish(), 0);
    EXPECT_EQ(
        Launched(),
        (std::multiset<std::string>{
            "ConvertPixels", "ConvertPixels", "ConvertPixels", "ConvertPixels", "ConvertPixels",
            "ConvertPixels", "ConvertPixels", "ConvertPixels", "GamutCompressionKernelDesaturation",
            "GamutCompressionKernelDesaturation", "GamutCompressionKernelDesaturation",
            "GamutCompressionKernelDesaturation", "ToneMapKernelITU2446A", "ToneMapKernelITU2446A",
            "ToneMapKernelITU2446A", "ToneMapKernelITU2446A"}));
    driver_->launches.clear();
  }
}

TEST_F(CudaCalls, ConvertInTheBlocksThatTheDeviceWants) {
  const auto device = RefHost::OpenCudaDevice(0);
  const auto source = MakeGPUFrame(device, RefHost::kBgraFloat, 33, 17, Space(9, 16));
  const auto destination = MakeGPUFrame(device, RefHost::kBgraFloat, 33, 17, Space(1, 13));
  ASSERT_EQ(KS::GPUFrameManipulators::CopyFrame(source, destination, 4, {}), 0) << Trace();
  ASSERT_EQ(device->Finish(), 0);
  ASSERT_EQ(Launched(), (std::multiset<std::string>{"ConvertPixels"}));
  EXPECT_THAT(driver_->launches[0].sizes, ElementsAre(3, 2, 1, 16, 16, 1));
}

TEST_F(CudaCalls, EndBeforeAnyLaunchWhereFramesAreOnTwoDevices) {
  const auto first = RefHost::OpenCudaDevice(0);
  const auto second = RefHost::OpenCudaDevice(1);
  const auto source = MakeGPUFrame(first, RefHost::kBgraFloat, 33, 17, Space(9, 8));
  PX::VideoFrameRef destination = MakeGPUFrame(second, RefHost::kBgraFloat, 33, 17, Space(1, 13));
  for (const auto algorithm :
       {ToneMapAlgorithmType::ITU2446A, ToneMapAlgorithmType::HuePreservationDesaturation,
        ToneMapAlgorithmType::None}) {
    const auto settings = SettingsFor(Space(9, 8), Space(1, 13), algorithm);
    EXPECT_LT(Quillon::ApplyGamutMapping(source, settings, destination), 0);
  }
  EXPECT_EQ(driver_->calls["cuLaunchKernel"], 0);
  EXPECT_EQ(driver_->calls["cuMemcpyDtoDAsync"], 0);
}

TEST_F(CudaCalls, LaunchNoKernelOfTheEngineWhereFramesAreOnTwoDevices) {
  const auto first = RefHost::OpenCudaDevice(0);
  const auto second = RefHost::OpenCudaDevice(1);
  const auto source = MakeGPUFrame(first, RefHost::kBgraFloat, 33, 17, Space(9, 16));
  PX::VideoFrameRef destination = MakeGPUFrame(second, RefHost::kBgraFloat, 33, 17, Space(1, 13));
  const auto settings = SettingsFor(Space(9, 16), Space(1, 13), ToneMapAlgorithmType::ITU2446A);
  EXPECT_LT(Quillon::ApplyGamutMapping(source, settings, destination), 0);
  EXPECT_EQ(first->Finish(), 0);
  EXPECT_EQ(second->Finish(), 0);
  EXPECT_EQ(Launched(), (std::multiset<std::string>{"ConvertPixels"})) << "to linear light, alone";
  EXPECT_EQ(driver_->launches[0].device, 0);
}

TEST_F(CudaCalls, OfTheThreadThatFailedFindItWhenTheResultIsFetched) {
  const auto device = RefHost::OpenCudaDevice(0);
  const auto source = MakeGPUFrame(device, RefHost::kBgraFloat, 33, 17, Space(9, 8));
  PX::VideoFrameRef destination = MakeGPUFrame(device, RefHost::kBgraFloat, 33, 17, Space(1, 13));
  const auto settings = SettingsFor(Space(9, 8), Space(1, 13), ToneMapAlgorithmType::CARToneCurve);
  driver_->failingLater = "cuLaunchKernel";
  driver_->error = 700;
  ASSERT_EQ(Quillon::ApplyGamutMapping(source, settings, destination), 0) << "nobody waited yet";
  const auto picture =
      MakeSystemFrame(RefHost::kBgraFloat, 33, 17, Space(1, 13), NotablePixels(33, 17, 1));
  EXPECT_LT(KS::GPUFrameManipulators::CopyFrame(destination, picture, 4, {}), 0);
  EXPECT_TRUE(device->IsLost());
  EXPECT_LT(Quillon::ApplyGamutMapping(source, settings, destination), 0);
}

}  // namespace
