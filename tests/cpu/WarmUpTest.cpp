// What is done once a process: every test runs in a child process of its own, where it is not done
// yet.

#include <algorithm>
#include <array>
#include <bit>
#include <cfenv>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

#include "cpu/QuillonImpl.h"
#include "curves/math.h"
#include "host/chromant/TransferFunctions.h"
#include "tests/Meeting.h"
#include "tests/host/HostTest.h"
#include "tonemap/Bt2390.h"
#include "tonemap/CarToneCurve.h"
#include "tonemap/PQTables.h"
#include "tonemap/SupportParams.h"

namespace {

/// Runs in a child process, which says on standard error what did not hold.
template <class Body>
void ExpectToHoldInAChild(Body body) {
  EXPECT_EXIT(
      {
        body();
        std::exit(testing::Test::HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

class WarmUp : public scripted::HostTest {
 protected:
  /// Maps a frame from full-scale PQ to a destination of this peak, a PQ code value.
  int Run(
      int toneMap, float destinationPeak, float light = 0.5F,
      const std::function<void(const std::string&)>& onCall = [](const std::string&) {}) {
    host.Reset();
    host.results.onCall = onCall;
    host.results.toneMappingApplicable = true;
    host.results.convertFrame = [=, calls = 0](const scripted::Conversion& conversion) mutable {
      if (conversion.width == 2) conversion.destination[4] = ++calls == 1 ? 0.75F : destinationPeak;
    };
    const auto record = scripted::MakeRecord(toneMap);
    std::vector<float> frame(80, light);
    return Quillon::QuillonImpl().GenerateGamutMappedFrame(frame.data(), frame.data(), 20, 1, 4, 4,
                                                           record);
  }

  std::size_t CountOf(const std::string& operation) { return host.CallsTo({operation}).size(); }

  /// The calls of an operation once there is an executor.
  long CountFromThreadsOn(const std::string& operation) {
    const std::vector<std::string>& operations = host.Operations();
    const auto firstThread =
        std::find(operations.begin(), operations.end(), "orvcore::threads::CreateCPUBoundExecutor");
    EXPECT_NE(firstThread, operations.end());
    return std::count(firstThread, operations.end(), operation);
  }

  void ExpectTablesBuiltOnceAndBeforeAnyThread(int toneMap, float destinationPeak,
                                               std::size_t placesBeyond) {
    EXPECT_EQ(Run(toneMap, destinationPeak), 0);
    EXPECT_EQ(CountOf("CHR::GetSignalToLinearTransferFn"), 1U);
    EXPECT_EQ(CountOf("CHR::GetLinearToSignalTransferFn"), 0U);
    // Every entry of both tables, and the knee start.
    EXPECT_EQ(CountOf("SignalToLinear"), 8191U + 1U);
    // Every entry, and the places beyond at which the host is compared with ST 2084.
    EXPECT_EQ(CountOf("LinearToSignal"), 10000U + placesBeyond);
    EXPECT_EQ(CountFromThreadsOn("SignalToLinear"), 0);
    EXPECT_EQ(CountFromThreadsOn("LinearToSignal"), 0);

    EXPECT_EQ(Run(toneMap, destinationPeak), 0);
    EXPECT_EQ(CountOf("CHR::GetSignalToLinearTransferFn"), 0U);
    EXPECT_EQ(CountOf("SignalToLinear"), 1U);
    EXPECT_EQ(CountOf("LinearToSignal"), 0U);
  }
};

constexpr std::size_t kPlacesBeyond = 989;

TEST_F(WarmUp, BuildsThePQTablesOnceAndBeforeAnyThreadForBothFormsOfBt2390) {
  for (const int toneMap : {2, 3}) {
    ExpectToHoldInAChild(
        [&] { ExpectTablesBuiltOnceAndBeforeAnyThread(toneMap, 0.5F, kPlacesBeyond); });
  }
}

TEST_F(WarmUp, BuildsThePQTablesForAKneeAbove1AndAsksForNoLightBeyondThem) {
  for (const int toneMap : {2, 3}) {
    ExpectToHoldInAChild([&] { ExpectTablesBuiltOnceAndBeforeAnyThread(toneMap, 1.0F, 0); });
  }
}

TEST_F(WarmUp, FailsNoCallWhereTheHostRefusesLightBeyondTheTables) {
  for (const int toneMap : {2, 3}) {
    ExpectToHoldInAChild([&] {
      Quillon::WarmPQTables();
      int refused = 0;
      const auto refuse = [&](const std::string& operation) {
        if (operation != "LinearToSignal") return;
        ++refused;
        throw std::string("no such light");
      };
      // Every call from now on that encodes throws; the frame's light is within the tables.
      EXPECT_EQ(Run(toneMap, 0.5F, 0.5F, refuse), 0);
      EXPECT_EQ(refused, 1);
      EXPECT_FALSE(Quillon::HostEncodesAsSt2084());
      // Light beyond the tables goes through the host, whose exception is the call's.
      EXPECT_THROW(Run(toneMap, 0.5F, -1.0F, refuse), std::string);
    });
  }
}

/// A third, as the mode of now rounds it.
float Third() {
  const volatile float three = 3.0F;
  const volatile float third = 1.0F / three;
  return third;
}

TEST_F(WarmUp, BuildsEveryTableInTheDefaultFloatingPointMode) {
  ExpectToHoldInAChild([&] {
    std::fesetround(FE_UPWARD);
    Quillon::WarmPQTables();
    Quillon::GetCarTables();
    const bool encodesAsSt2084 = Quillon::HostEncodesAsSt2084();
    EXPECT_EQ(std::fegetround(), FE_UPWARD);
    std::fesetround(FE_TONEAREST);
    EXPECT_TRUE(encodesAsSt2084);
    const CHR::TransferFunction encode = CHR::GetLinearToSignalTransferFn(16, 0);
    const CHR::TransferFunction decode = CHR::GetSignalToLinearTransferFn(16, 0);
    for (std::size_t i = 0; i < 8191; ++i) {
      std::array<float, 3> nits = {static_cast<float>(i), 0.0F, 0.0F};
      encode(nits.data(), 1.0F);
      ASSERT_EQ(Quillon::PQEncodeTable()[i], nits[0]) << i;
      std::array<float, 3> signal = {static_cast<float>(i) * (1.0F / 8191.0F), 0.0F, 0.0F};
      decode(signal.data(), 1.0F);
      ASSERT_EQ(Quillon::PQDecodeTable()[i], signal[0]) << i;
    }
    float next = 0.005F;
    for (std::size_t i = 0; i < Quillon::kCarTableSize; ++i, next += 0.0077734375F) {
      const float x = std::min(1.0F, next);
      const float p = Power(100.0F, 1.25F);
      const float power = Power(x, 1.25F);
      ASSERT_EQ(Quillon::GetCarTables().b[i], (p * x - power) / ((p - power) * x + 1e-15F)) << i;
    }
  });
}

TEST_F(WarmUp, ComputesParametersInTheDefaultFloatingPointMode) {
  host.results.convertFrame = [](const scripted::Conversion& c) { c.destination[0] = Third(); };
  const auto paramsIn = [&](int rounding, int algorithm) {
    std::fesetround(rounding);
    auto record = scripted::MakeRecord(algorithm, algorithm == 0 ? 1 : 0);
    Quillon::SupportVector params;
    if (algorithm == 0) {
      Quillon::GetGamutCompressionSupportParams(record, params);
    } else {
      record.toneMapSettings.knee = 0.37F;
      Quillon::GetToneMappingSupportParams(record.toneMapSettings, params);
    }
    EXPECT_EQ(std::fegetround(), rounding);
    std::fesetround(FE_TONEAREST);
    std::vector<std::uint32_t> bits;
    for (const float param : params) bits.push_back(std::bit_cast<std::uint32_t>(param));
    return bits;
  };
  for (const int algorithm : {0, 2, 4, 5, 6}) {
    EXPECT_EQ(paramsIn(FE_UPWARD, algorithm), paramsIn(FE_TONEAREST, algorithm)) << algorithm;
    EXPECT_EQ(paramsIn(FE_DOWNWARD, algorithm), paramsIn(FE_TONEAREST, algorithm)) << algorithm;
  }
}

TEST_F(WarmUp, BuildsTheTablesOfACallInTheDefaultFloatingPointMode) {
  ExpectToHoldInAChild([&] {
    const Quillon::SupportVector params = {0.0F,      0.751827F, 0.0F,       0.5806888F, 203.0F,
                                           0.751827F, 0.01F,     0.7723702F, 0.6585553F, 0.3F,
                                           0.2126F,   0.7152F,   0.0722F};
    for (const auto form : {Quillon::Bt2390Form::MaxRGB, Quillon::Bt2390Form::ByChannel}) {
      std::fesetround(FE_UPWARD);
      const auto upward = MakeBt2390Tables(form, params);
      std::fesetround(FE_TONEAREST);
      const auto nearest = MakeBt2390Tables(form, params);
      EXPECT_EQ(upward->decoded, nearest->decoded);
      EXPECT_EQ(upward->mapped, nearest->mapped);
      EXPECT_EQ(upward->ratio, nearest->ratio);
    }
  });
}

TEST_F(WarmUp, BuildsEveryTableOnceUnderEightThreadsThatMeetThere) {
  ExpectToHoldInAChild([&] {
    host.Reset();
    Meeting meeting(8);
    std::vector<std::thread> threads;
    std::array<std::uint32_t, 8> codes{};
    for (std::size_t thread = 0; thread < 8; ++thread) {
      threads.emplace_back([&, thread] {
        meeting.ArriveAndWait();
        Quillon::WarmPQTables();
        Quillon::HostEncodesAsSt2084();
        codes[thread] = std::bit_cast<std::uint32_t>(Quillon::PQEncodeTable()[100]) ^
                        std::bit_cast<std::uint32_t>(Quillon::PQDecodeTable()[100]) ^
                        std::bit_cast<std::uint32_t>(Quillon::GetCarTables().a[100]);
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(CountOf("CHR::GetSignalToLinearTransferFn"), 1U);
    EXPECT_EQ(CountOf("SignalToLinear"), 8191U);
    EXPECT_GE(CountOf("LinearToSignal"), 10000U);
    EXPECT_LE(CountOf("LinearToSignal"), 10000U + kPlacesBeyond);
    for (const std::uint32_t code : codes) EXPECT_EQ(code, codes[0]);
  });
}

}  // namespace
