#include "tests/tonemap/ToneMapTest.h"
#include "tonemap/Bt2390.h"

namespace {

struct HostWithoutPQDecoding {
  HostWithoutPQDecoding() {
    scripted::Host::Instance().FailWithNothing("CHR::GetSignalToLinearTransferFn");
  }
};

// Before the engine's static initialisation asks for it.
[[gnu::init_priority(101)]] const HostWithoutPQDecoding kHostWithoutPQDecoding;

class AbsentPQDecoding : public tonemap::ToneMapTest {};

TEST_F(AbsentPQDecoding, LeavesTheKneeStartAsItIs) {
  ASSERT_EQ(host.StartupCalls().size(), 2U);
  SetAlgorithm(2);
  host.results.convertFrame = [](const scripted::Conversion& c) { c.destination[4] = 0.75F; };
  SetSource(scripted::kPQ);
  Quillon::GetITU2390SupportParams(settings, params);
  EXPECT_EQ(params.at(8), 1.5F * 0.75F - 0.5F);
  EXPECT_EQ(params.at(9), params[8] / 100.0F);
  EXPECT_TRUE(host.CallsTo({"SignalToLinear"}).empty());
}

}  // namespace
