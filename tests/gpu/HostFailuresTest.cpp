#include "engine/Quillon.h"
#include "tests/gpu/GPUTest.h"
#include "tests/host/EveryFailure.h"

/// Every single host call of whole runs on a GPU, made to throw, to yield nothing or to fail with
/// a code, in turn.

namespace {

using gpu::Lines;
using scripted::Inventory;
using scripted::Place;
using scripted::TakeInventory;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// One way through the engine.
struct Road {
  const char* name;
  int toneMapAlgorithm;
  int gamutAlgorithm;
  bool applicable;
  bool linearSource;
  int platformKind;
  int result;
};

const Road kRoads[] = {
    {"copy", 5, 1, false, false, 1, 0},
    {"hue preserving and Reinhard", 5, 1, true, false, 1, 0},
    {"automatic and desaturation", 1, 2, true, false, 2, 0},
    {"linear source, BT.2390", 2, 0, true, true, 3, 0},
    {"BT.2446 A", 4, 0, true, false, 4, 0},
    {"CAR", 6, 0, true, true, 0, 0},
    {"unknown tone map", 7, 1, true, false, 1, static_cast<int>(0xA00F000CU)},
    {"unknown gamut compression", 5, 7, true, false, 1, static_cast<int>(0xA00F000CU)},
};

class GPUHostFailures : public gpu::GPUTest {
 protected:
  /// Runs a road from the start, on a context that has no kernels yet. `arrange` plans the
  /// failures.
  template <class Arrange>
  int Run(const Road& road, Arrange arrange) {
    host.Reset();
    SetToneMap(road.toneMapAlgorithm);
    SetGamutCompression(road.gamutAlgorithm);
    host.results.gamutMappingApplicable = road.applicable;
    host.results.toneMappingApplicable = road.applicable;
    host.results.gamutCompressionApplicable = road.applicable && road.gamutAlgorithm != 0;
    host.results.traceChangeCount = ++changeCount_;  // each site asks anew
    ConvertPixelsTo(4.0F);
    device = scripted::MakeDevice({.platformKind = road.platformKind});
    const PX::VideoFrameRef from = scripted::MakeFrame(
        SetupOf("source", road.linearSource ? scripted::kLinear709 : scripted::kHLG));
    PX::VideoFrameRef to = scripted::MakeFrame(SetupOf("destination", scripted::kSDR));
    const scripted::RecordWatch watch(record);
    arrange();
    return Quillon::ApplyGamutMapping(from, record, to);
  }

  std::vector<Place> PlacesOf(const Road& road) {
    EXPECT_EQ(Run(road, [] {}), road.result) << road.name;
    return scripted::PlacesIn(host.Operations());
  }

 private:
  std::int32_t changeCount_ = 10000;
};

TEST_F(GPUHostFailures, AnExceptionFromAnyCallPassesWithNothingLeaked) {
  const auto attempt = [&](const Road& road, const Place& place) {
    const auto plan = [&] { host.FailWithException(place.operation, place.nth); };
    EXPECT_THROW(Run(road, plan), scripted::HostException);
  };
  EXPECT_GT(
      scripted::AtEveryPlace(
          kRoads, [&](const Road& road) { return PlacesOf(road); }, scripted::CanThrow, attempt),
      250);
}

TEST_F(GPUHostFailures, NothingFromAnyCallNeitherCrashesNorLeaks) {
  EXPECT_GT(scripted::WithNothingFromEveryPlace(
                host, kRoads, [&](const Road& road) { return PlacesOf(road); },
                [&](const Road& road, const auto& plan) { Run(road, plan); }),
            300);
}

TEST_F(GPUHostFailures, AFailedAllocationPassesWithNothingLeaked) {
  for (const Road& road : kRoads) {
    const scripted::Undisturbed whole = scripted::WithEveryAllocationFailing(
        host, road, [&](const Road& r, const auto& plan) { Run(r, plan); });
    EXPECT_EQ(whole.allocations > 0, road.applicable) << road.name;
  }
}

/// Whether the operation returns a code that ends a run on a GPU.
bool ReturnsACode(const std::string& operation) {
  return operation == "KS::CreateGPUVideoFrame" ||
         operation == "KS::GPUFrameManipulators::CopyFrame" ||
         operation == "device.CreateArguments" || operation == "device.Launch" ||
         (operation.starts_with("arguments.") && !scripted::IsRelease(operation));
}

/// The messages of a failure at a place of a run that compresses the gamut by Reinhard or
/// desaturation, or not at all, and then tone maps.
Lines MessagesOf(const Road& road, const Place& place, bool compressing) {
  if (place.operation == "KS::CreateGPUVideoFrame") {
    return {"LinearizeFrame : CreateGPUVideoFrame failed\r\n",
            "ApplyGamutMappingGPU : Source or Destination frame linearisation changed\r\n"};
  }
  if (place.operation == "KS::GPUFrameManipulators::CopyFrame") {
    if (!road.applicable) return {"ApplyGamutMappingGPU : No operation Copy frame failed\r\n"};
    if (place.nth == 1 && !road.linearSource) {
      return {"LinearizeFrame : Copy to output frame failed\r\n",
              "ApplyGamutMappingGPU : Source or Destination frame linearisation changed\r\n"};
    }
    return {"ApplyGamutMappingGPU : Copy to output frame failed\r\n"};
  }
  if (compressing) {
    return {
        "ApplyGamutMappingGPU : Gamut Mapping Kernel failed. Gamut Compression Method : gamut "
        "compression " +
        std::to_string(road.gamutAlgorithm) + "\r\n"};
  }
  const int algorithm = road.toneMapAlgorithm == 1 ? 5 : road.toneMapAlgorithm;
  return {"ApplyToneMapGPU : Tone Mapping Kernel failed. Tone Mapping Method : tone map " +
              std::to_string(algorithm) + "\r\n",
          "ApplyGamutMappingGPU : ApplyToneMapGPU failed\r\n"};
}

class GPUFailureCodes : public GPUHostFailures, public testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Codes, GPUFailureCodes, testing::Values(-1234567, -1));

TEST_P(GPUFailureCodes, FromAnyDeviceCallComeBackUnchangedWithTheirMessagesAndEndTheRun) {
  const int kCode = GetParam();
  int tried = 0;
  for (const Road& road : kRoads) {
    if (road.result != 0) continue;
    int launchesBefore = 0;
    for (const Place& place : PlacesOf(road)) {
      const bool compressing = road.gamutAlgorithm != 0 && launchesBefore == 0;
      if (place.operation == "device.Launch") ++launchesBefore;
      if (!ReturnsACode(place.operation)) continue;
      SCOPED_TRACE(scripted::TextOf(road.name, place));
      const Inventory before = TakeInventory();
      EXPECT_EQ(Run(road, [&] { host.FailWithCode(place.operation, kCode, place.nth); }), kCode);
      EXPECT_EQ(TakeInventory(), before);
      EXPECT_THAT(Texts(), ElementsAreArray(MessagesOf(road, place, compressing)));

      // What failed is the last call of its kind.
      std::string last;
      for (const std::string& operation : host.Operations()) {
        if (ReturnsACode(operation)) last = operation;
      }
      EXPECT_EQ(last, place.operation);
      ++tried;
    }
  }
  EXPECT_GT(tried, 70);
}

TEST_F(GPUHostFailures, APositiveCodeFromAnyDeviceCallIsSuccess) {
  int tried = 0;
  for (const Road& road : kRoads) {
    if (road.result != 0) continue;
    const std::vector<Place> places = PlacesOf(road);
    const Lines operations = host.Operations();
    for (const Place& place : places) {
      if (!ReturnsACode(place.operation)) continue;
      SCOPED_TRACE(scripted::TextOf(road.name, place));
      EXPECT_GE(Run(road, [&] { host.FailWithCode(place.operation, 1, place.nth); }), 0);
      EXPECT_EQ(host.Operations(), operations);
      EXPECT_THAT(Texts(), IsEmpty());
      ++tried;
    }
  }
  EXPECT_GT(tried, 70);
}

TEST_F(GPUHostFailures, AKernelThatDoesNotLoadEndsTheRunUnlaunched) {
  for (const Road& road : kRoads) {
    if (road.result != 0 || !road.applicable) continue;
    const int kernels = road.gamutAlgorithm != 0 ? 2 : 1;
    for (int nth = 1; nth <= kernels; ++nth) {
      SCOPED_TRACE(std::string(road.name) + ", kernel " + std::to_string(nth));
      const Inventory before = TakeInventory();
      EXPECT_EQ(Run(road, [&] { host.FailWithNothing("IL::LoadKernel", nth); }),
                static_cast<int>(0xA00F0001U));
      EXPECT_EQ(TakeInventory(), before);
      EXPECT_EQ(host.CallsTo({"device.Launch"}).size(), static_cast<std::size_t>(nth - 1));
      if (nth < kernels) {
        EXPECT_THAT(Texts(), IsEmpty());
      } else {
        EXPECT_THAT(Texts(), ElementsAre("ApplyGamutMappingGPU : ApplyToneMapGPU failed\r\n"));
      }
    }
  }
}

}  // namespace
