// One process, one test: the PQ tables are built once in it.

#include "cpu/QuillonImpl.h"
#include "tests/host/HostTest.h"

namespace {

class WarmUp : public scripted::HostTest {
 protected:
  int Run() {
    host.Reset();
    host.results.toneMappingApplicable = true;
    host.results.convertFrame = [peak = 1.0F](const scripted::Conversion& conversion) mutable {
      if (conversion.width == 2) conversion.destination[4] = peak -= 0.25F;
    };
    const auto record = scripted::MakeRecord(2);
    std::vector<float> frame(80, 0.5F);
    return Quillon::QuillonImpl().GenerateGamutMappedFrame(frame.data(), frame.data(), 20, 1, 4, 4,
                                                           record);
  }

  std::size_t CountOf(const std::string& operation) { return host.CallsTo({operation}).size(); }
};

TEST_F(WarmUp, BuildsThePqTablesOnceAndBeforeAnyThread) {
  ASSERT_EQ(Run(), 0);
  EXPECT_EQ(CountOf("CHR::GetSignalToLinearTransferFn"), 1U);
  EXPECT_EQ(CountOf("CHR::GetLinearToSignalTransferFn"), 0U);
  // Every entry of both tables, and the knee start.
  EXPECT_EQ(CountOf("SignalToLinear"), 8191U + 1U);
  // Every entry, and the places beyond at which the host is compared with ST 2084.
  EXPECT_EQ(CountOf("LinearToSignal"), 10000U + 989U);
  const std::vector<std::string> operations = host.Operations();
  const auto firstThread =
      std::find(operations.begin(), operations.end(), "orvcore::threads::CreateCPUBoundExecutor");
  ASSERT_NE(firstThread, operations.end());
  EXPECT_EQ(std::count(firstThread, operations.end(), "SignalToLinear"), 0);
  EXPECT_EQ(std::count(firstThread, operations.end(), "LinearToSignal"), 0);

  ASSERT_EQ(Run(), 0);
  EXPECT_EQ(CountOf("CHR::GetSignalToLinearTransferFn"), 0U);
  EXPECT_EQ(CountOf("SignalToLinear"), 1U);
  EXPECT_EQ(CountOf("LinearToSignal"), 0U);
}

}  // namespace
