#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/Frame.h"
#include "tests/host/Host.h"
#include "tests/host/Inventory.h"
#include "tests/host/Recycler.h"
#include "tests/host/Settings.h"

namespace scripted {

using Lines = std::vector<std::string>;

/// A test on the scripted host. Starts with an empty log and default results, and fails when
/// anything that the host gave out during the test has not come back at its end.
class HostTest : public testing::Test {
 protected:
  void SetUp() override {
    host.Reset();
    before_ = TakeInventory();
    faultsBefore_ = Recycler::Instance().Faults();
  }

  void TearDown() override {
    Recycler::Instance().FailAllocation(0);
    EXPECT_EQ(TakeInventory(), before_) << "something was leaked";
    EXPECT_EQ(Recycler::Instance().Faults(), faultsBefore_) << "a block came back wrong";
  }

  Host& host = Host::Instance();

 private:
  Inventory before_;
  int faultsBefore_ = 0;
};

}  // namespace scripted
