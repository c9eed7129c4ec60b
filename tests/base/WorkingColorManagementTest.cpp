#include "base/WorkingColorManagement.h"
#include "tests/host/Describe.h"
#include "tests/host/HostTest.h"

namespace {

class WorkingColorManagement : public scripted::HostTest {
 protected:
  static unsigned GraphicsWhite(int version) {
    auto record = scripted::MakeRecord(5);
    record.toneMapSettings.controls.version = version;
    return scripted::GraphicsWhite(Quillon::WorkingColorManagementSettings(record.toneMapSettings));
  }
};

TEST_F(WorkingColorManagement, IsTheRecordsOwnFromVersion3On) {
  EXPECT_EQ(GraphicsWhite(3), 100U);
  EXPECT_EQ(GraphicsWhite(4), 100U);
}

TEST_F(WorkingColorManagement, IsDefaultConstructedBelowVersion3) {
  EXPECT_EQ(GraphicsWhite(2), 203U);
  EXPECT_EQ(GraphicsWhite(0), 203U);
  EXPECT_EQ(GraphicsWhite(-1), 203U);
}

}  // namespace
