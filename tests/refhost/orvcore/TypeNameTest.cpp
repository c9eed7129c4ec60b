#include <gtest/gtest.h>

#include "host/orvcore/Debug.h"
#include "host/orvcore/InterfaceRef.h"

namespace orvcore::debug {
namespace {

TEST(GetTypeName, GivesReadableNames) {
  EXPECT_EQ(GetTypeName(typeid(int)), "int");
  EXPECT_EQ(GetTypeName(typeid(classref::IObject)), "orvcore::classref::IObject");
  EXPECT_EQ(GetTypeName(typeid(classref::InterfaceRef<int>)),
            "orvcore::classref::InterfaceRef<int>");
}

}  // namespace
}  // namespace orvcore::debug
