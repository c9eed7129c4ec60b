#include <new>

#include "engine/Quillon.h"
#include "tests/engine/Pipeline.h"
#include "tests/host/EveryFailure.h"
#include "tonemap/PQTables.h"

/// Every single host call of whole runs, made to throw, to yield nothing or to fail, in turn.

namespace {

using pipeline::Frames;
using scripted::CanThrow;
using scripted::Place;

constexpr int kCode = -4;

/// One way through the engine. Where an operation is named, that call of it fails with `kCode`.
struct Road {
  const char* name;
  Frames (*makeFrames)();
  int version;
  int toneMapAlgorithm;
  int gamutAlgorithm;
  bool applicable;
  bool hasSubExecutor;
  int result;
  int failingCall = 0;
  const char* failing = nullptr;
};

const Road kRoads[] = {
    {"copy", pipeline::MakeDirectFrames, 3, 5, 1, false, true, 0},
    {"direct, hue preserving and Reinhard", pipeline::MakeDirectFrames, 3, 5, 1, true, true, 0},
    {"direct, automatic and desaturation", pipeline::MakeDirectFrames, 2, 1, 2, true, true, 0},
    {"copied, hue preserving, inline", pipeline::MakeCopiedFrames, 2, 5, 1, true, false, 0},
    {"copied, unknown tone map", pipeline::MakeCopiedFrames, 3, 7, 2, true, true,
     static_cast<int>(0xA00F000CU)},
    {"direct, unknown gamut compression", pipeline::MakeDirectFrames, 3, 5, 7, true, true,
     static_cast<int>(0xA00F000CU)},
    {"direct, BT.2390", pipeline::MakeDirectFrames, 3, 2, 0, true, true, 0},
    {"direct, BT.2446 A", pipeline::MakeDirectFrames, 3, 4, 0, true, true, 0},
    {"direct, CAR", pipeline::MakeDirectFrames, 3, 6, 0, true, true, 0},
    {"copy that fails", pipeline::MakeDirectFrames, 3, 5, 1, false, true, kCode, 1,
     "KS::VideoFrameManipulators::CopyFrame"},
    {"copied, no working frame", pipeline::MakeCopiedFrames, 3, 5, 1, true, true, kCode, 1,
     "KS::CreateVideoFrame"},
    {"copied, delivery that fails", pipeline::MakeCopiedFrames, 3, 5, 0, true, true, kCode, 2,
     "KS::VideoFrameManipulators::CopyFrame"},
};

class HostFailures : public scripted::HostTest {
 protected:
  // Whose calls are made once a process.
  HostFailures() {
    Quillon::WarmPQTables();
    Quillon::HostEncodesAsSt2084();
  }

  /// Runs a road from the start. `arrange` plans the failures.
  template <class Arrange>
  int Run(const Road& road, Arrange arrange) {
    host.Reset();
    auto record = scripted::MakeRecord(road.toneMapAlgorithm, road.gamutAlgorithm);
    record.toneMapSettings.controls.version = road.version;
    record.toneMapSettings.destinationColorSpace =
        orvmediatypes::color::ColorSpace(scripted::Colors(1, 1, 300));
    host.results.gamutMappingApplicable = road.applicable;
    host.results.toneMappingApplicable = road.applicable;
    host.results.gamutCompressionApplicable = road.applicable && road.gamutAlgorithm != 0;
    host.results.hasSubExecutor = road.hasSubExecutor;
    host.results.convertFrame = [peak = 1.0F](const scripted::Conversion& conversion) mutable {
      if (conversion.destination == nullptr) return;
      if (conversion.width == 2 && conversion.height == 1) {
        conversion.destination[4] = peak -= 0.25F;  // black and peak, of source and destination
      } else {
        conversion.destination[0] = 4.0F;
      }
    };
    // A change at every run: each site asks anew.
    host.results.traceChangeCount = ++changeCount_;
    Frames frames = road.makeFrames();
    const scripted::RecordWatch watch(record);
    if (road.failing != nullptr) host.FailWithCode(road.failing, kCode, road.failingCall);
    arrange();
    return Quillon::ApplyGamutMapping(frames.source, record, frames.destination);
  }

  std::vector<Place> PlacesOf(const Road& road) {
    EXPECT_EQ(Run(road, [] {}), road.result);
    return scripted::PlacesIn(host.Operations());
  }

 private:
  std::int32_t changeCount_ = 1;
};

/// Exceptions that a host may throw: one of its own, one of memory, and one that is no
/// std::exception.
struct NoStandardException {};

template <class Exception>
class HostExceptions : public HostFailures {};

using Exceptions = testing::Types<scripted::HostException, std::bad_alloc, NoStandardException>;
TYPED_TEST_SUITE(HostExceptions, Exceptions);

template <class Exception>
Exception MakeException() {
  return {};
}
template <>
scripted::HostException MakeException() {
  return scripted::HostException("host");
}

TYPED_TEST(HostExceptions, PassFromAnyCallWithNothingLeaked) {
  const auto attempt = [&](const Road& road, const Place& place) {
    const auto plan = [&] {
      this->host.FailWithException(place.operation, place.nth,
                                   std::make_exception_ptr(MakeException<TypeParam>()));
    };
    EXPECT_THROW(this->Run(road, plan), TypeParam);
  };
  EXPECT_GT(scripted::AtEveryPlace(
                kRoads, [&](const Road& road) { return this->PlacesOf(road); }, CanThrow, attempt),
            300);
}

TEST_F(HostFailures, NothingFromAnyCallNeitherCrashesNorLeaks) {
  EXPECT_GT(scripted::WithNothingFromEveryPlace(
                host, kRoads, [&](const Road& road) { return PlacesOf(road); },
                [&](const Road& road, const auto& plan) { Run(road, plan); }),
            200);
}

TEST_F(HostFailures, AFailedAllocationPassesWithNothingLeaked) {
  int withMessages = 0;
  for (const Road& road : kRoads) {
    const scripted::Undisturbed whole = scripted::WithEveryAllocationFailing(
        host, road, [&](const Road& r, const auto& plan) { Run(r, plan); });
    const bool copies = !road.applicable && road.result == 0;
    EXPECT_EQ(whole.allocations > 0, !copies) << road.name;
    withMessages += whole.messages.empty() ? 0 : 1;
  }
  EXPECT_EQ(withMessages, 5);
}

TEST_F(HostFailures, AFailedOnePixelConversionIsNotAFailureOfTheCall) {
  for (int nth = 2; nth <= 3; ++nth) {  // the first linearizes the frame
    host.Reset();
    const Road& road = kRoads[1];
    EXPECT_EQ(Run(road, [&] { host.FailWithCode("CHR::ConvertFrame", -5, nth); }), 0);
  }
}

}  // namespace
