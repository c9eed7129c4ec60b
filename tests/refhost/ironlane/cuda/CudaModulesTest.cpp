// The CUDA back end on a scripted driver: which PTX is taken, and what is kept of it.

#include <filesystem>
#include <future>
#include <string>
#include <vector>

#include "kernels/KernelModules.h"
#include "refhost/ResultCodes.h"
#include "refhost/ironlane/Devices.h"
#include "refhost/ironlane/cuda/CudaDevice.h"
#include "refhost/ironlane/cuda/PtxText.h"
#include "tests/refhost/ironlane/cuda/CudaTest.h"

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class CudaModules : public CudaTest {
 protected:
  void SetUp() override {
    QUILLON_NEEDS_PTX();
    CudaTest::SetUp();
  }

  static bool Load() {
    const auto device = RefHost::OpenCudaDevice(0);
    return device != nullptr &&
           device->LoadKernel("ToneMapMain", "ToneMapKernelITU2446A") != nullptr &&
           device->LoadKernel("ToneMapMain", "ToneMapKernelCARToneCurve") != nullptr;
  }
};

TEST_F(CudaModules, AreLinkedOnceAndKeptOnDisk) {
  EXPECT_TRUE(Load());
  EXPECT_EQ(driver_->linked, 1);
  EXPECT_TRUE(Load());
  EXPECT_EQ(driver_->linked, 1) << "read from disk";

  const fs::path file = fs::directory_iterator(cache_ / "quillon" / "kernels")->path();
  fs::resize_file(file, fs::file_size(file) / 2);
  EXPECT_TRUE(Load());
  EXPECT_EQ(driver_->linked, 2) << "damaged";

  // What the driver no longer takes is built anew, too.
  driver_->calls.clear();
  driver_->failing = "cuModuleLoadData";
  driver_->error = 209;
  EXPECT_TRUE(Load());
  EXPECT_EQ(driver_->linked, 3);
  EXPECT_EQ(KeptBinaries(), 1);
}

TEST_F(CudaModules, AreKeptOnDiskThoughThereIsNoMemoryToLoadThem) {
  EXPECT_TRUE(Load());
  driver_->calls.clear();
  driver_->failing = "cuModuleLoadData";
  driver_->error = 2;
  EXPECT_FALSE(Load());
  EXPECT_THAT(Trace(), HasSubstr("CUDA_ERROR_OUT_OF_MEMORY\r\n"));
  EXPECT_EQ(KeptBinaries(), 1);
  EXPECT_TRUE(Load());
  EXPECT_EQ(driver_->linked, 1);
}

TEST_F(CudaModules, AreKeptForOneVersionOfTheDriverAndOneCapability) {
  driver_->version = 12040;
  EXPECT_TRUE(Load());
  driver_->version = 12041;
  EXPECT_TRUE(Load());
  EXPECT_EQ(driver_->linked, 2);
  driver_->devices[0].minor = 1;
  EXPECT_TRUE(Load());
  EXPECT_EQ(driver_->linked, 3);
  EXPECT_TRUE(Load());
  EXPECT_EQ(driver_->linked, 3);
  EXPECT_EQ(KeptBinaries(), 3);
}

TEST_F(CudaModules, AreNotKeptForADriverThatDoesNotTellItsVersion) {
  driver_->failing = "cuDriverGetVersion";
  driver_->failsAlways = true;
  EXPECT_TRUE(Load());
  EXPECT_TRUE(Load());
  EXPECT_EQ(driver_->linked, 2);
  EXPECT_EQ(KeptBinaries(), 0);
}

TEST_F(CudaModules, SayWhatTheLinkerSaidWhereTheyDoNotBuild) {
  driver_->failing = "cuLinkAddData";
  driver_->error = 801;
  const auto device = RefHost::OpenCudaDevice(0);
  EXPECT_EQ(device->LoadKernel("ToneMapMain", "ToneMapKernelITU2446A"), nullptr);
  EXPECT_THAT(Trace(), HasSubstr("CUDA : the kernels do not build : what the linker says\r\n"));
  EXPECT_NE(device->LoadKernel("ToneMapMain", "ToneMapKernelITU2446A"), nullptr) << "tried again";
  EXPECT_EQ(device->LoadKernel("ToneMapMain", "NoSuchKernel"), nullptr);
  EXPECT_EQ(device->LoadKernel("NoSuchModule", "ToneMapKernelITU2446A"), nullptr);
  EXPECT_THAT(Trace(), HasSubstr("CUDA : there is no module NoSuchModule\r\n"));
}

TEST_F(CudaModules, ThatAreBuiltHoldUpNoLaunch) {
  const auto device = RefHost::OpenCudaDevice(0);
  std::uint64_t memory = 0;
  ASSERT_EQ(device->Allocate(kBytes, memory), 0);
  ASSERT_EQ(LaunchOn(*device, memory), 0);
  bool isLaunched = false;
  driver_->onCall = [&](const std::string& function) {
    if (function != "cuLinkComplete") return;
    isLaunched =
        std::async(std::launch::async, [&] { return LaunchOn(*device, memory); }).get() == 0;
  };
  EXPECT_NE(device->LoadKernel("PixelConversion", "ConvertPixels"), nullptr);
  EXPECT_TRUE(isLaunched);
  driver_->onCall = {};
  device->Free(memory);
}

TEST_F(CudaModules, AreOfTheNewestPtxThatDriverAndDeviceTake) {
  const auto texts = kernels::FindKernelModule("ToneMapMain")->ptx;
  if (texts.size() != 2 || texts[0].find(".version 9.0") == std::string_view::npos) {
    GTEST_SKIP() << "needs PTX of nvcc 13 and of Clang";
  }
  const auto loaded = [&](int version, int major, int minor) {
    ForgetScriptedDriver();
    driver_->version = version;
    driver_->devices = {{.major = major, .minor = minor}};
    fs::remove_all(cache_);
    EXPECT_TRUE(Load()) << Trace();
    EXPECT_EQ(driver_->calls["cuLinkCreate"], 1) << "nothing is tried in vain";
    return driver_->loaded;
  };
  EXPECT_THAT(loaded(13000, 12, 0), ElementsAre("9.0"));
  EXPECT_THAT(loaded(13000, 7, 5), ElementsAre("9.0"));
  EXPECT_THAT(loaded(13000, 7, 0), ElementsAre("7.0"));
  EXPECT_THAT(loaded(13000, 6, 0), ElementsAre("7.0"));
  EXPECT_THAT(loaded(12090, 9, 0), ElementsAre("7.0"));
  EXPECT_THAT(loaded(12000, 6, 1), ElementsAre("7.0"));
  EXPECT_THAT(loaded(11000, 8, 0), ElementsAre("7.0"));
}

TEST_F(CudaModules, AreOfTheNextPtxWhereTheDriverRefusesTheNewest) {
  if (kernels::FindKernelModule("ToneMapMain")->ptx.size() != 2) {
    GTEST_SKIP() << "needs PTX of nvcc and of Clang";
  }
  driver_->version = 13000;
  for (const int error : {209, 218, 222}) {
    fs::remove_all(cache_);
    driver_->calls.clear();
    driver_->loaded.clear();
    driver_->failing = "cuLinkAddData";
    driver_->error = error;
    EXPECT_TRUE(Load());
    EXPECT_THAT(driver_->loaded, ElementsAre("7.0")) << error;
    EXPECT_EQ(Trace(), "") << "all is well";
  }
}

TEST_F(CudaModules, AreNotLookedForOnDevicesThatTakeNone) {
  const auto obstacle = [&](int version, int major, int minor) {
    driver_->version = version;
    driver_->devices = {{.major = major, .minor = minor}};
    const std::string said = RefHost::ListCudaDevices().at(0).obstacle;
    EXPECT_EQ(RefHost::OpenCudaDevice(0) == nullptr, !said.empty());
    return said;
  };
  if (kernels::FindKernelModule("ToneMapMain")->ptx.back().find("sm_60") == std::string::npos) {
    GTEST_SKIP() << "needs PTX for capability 6.0";
  }
  EXPECT_EQ(obstacle(12000, 6, 0), "");
  EXPECT_EQ(obstacle(12000, 5, 2), "compute capability 5.2, and the kernels need 6.0");
  EXPECT_EQ(obstacle(10020, 7, 0), "the driver is for CUDA 10.2, and the kernels need 11.0");
  EXPECT_THAT(Trace(), HasSubstr("CUDA : Scripted cannot be used : the driver is for CUDA 10.2"));
}

TEST(PtxNeeds, AreReadOffItsFirstLines) {
  const auto needs = RefHost::NeedsOf("// by no compiler\n\n.version 8.5\n.target sm_90a, debug\n");
  ASSERT_TRUE(needs.has_value());
  EXPECT_EQ(needs->driver, (RefHost::MajorMinor{12, 5}));
  EXPECT_EQ(needs->capability, (RefHost::MajorMinor{9, 0}));
  EXPECT_EQ(RefHost::NeedsOf("\n.version 9.0\n.target sm_121\n")->capability,
            (RefHost::MajorMinor{12, 1}));
  for (const char* text :
       {"", "\n.version 8\n.target sm_90\n", "\n.version 8.5\n", "\n.version x.y\n"}) {
    EXPECT_FALSE(RefHost::NeedsOf(text).has_value()) << text;
  }
}

class FirstDevice : public CudaModules {};

TEST_F(FirstDevice, IsTheNextWhereKernelsDoNotBuildOnOne) {
  driver_->devices = {{.name = "Old", .major = 5}, {.name = "Broken"}, {.name = "Good"}};
  driver_->failing = "cuLinkAddData";
  driver_->error = 801;
  const auto device = RefHost::OpenFirstDevice();
  ASSERT_NE(device, nullptr);
  EXPECT_EQ(device->Info().name, "Good");
  EXPECT_THAT(Trace(), HasSubstr("CUDA : Old cannot be used"));
}

TEST(OrderOfChoice, HasGPUsBeforeProcessors) {
  const auto info = [](const char* name, bool isProcessor) {
    RefHost::DeviceInfo made;
    made.name = name;
    made.isProcessor = isProcessor;
    return made;
  };
  std::vector<std::string> names;
  for (const auto& device : RefHost::InOrderOfChoice(
           {info("a", true), info("b", false), info("c", true), info("d", false)})) {
    names.push_back(device.name);
  }
  EXPECT_THAT(names, ElementsAre("b", "d", "a", "c"));
}

}  // namespace
