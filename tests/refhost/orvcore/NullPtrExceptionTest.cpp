#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "host/orvcore/Debug.h"
#include "host/orvcore/InterfaceRef.h"
#include "refhost/orvcore/NullPtrException.h"

namespace orvcore {
namespace {

struct Interface {
  virtual int Value() = 0;

 protected:
  ~Interface() = default;
};

TEST(NullPtrException, NamesTheInterface) {
  try {
    config::DoThrowNullPtrException("KS::IGPUVideoFrame");
    FAIL() << "nothing was thrown";
  } catch (const RefHost::NullPtrException& error) {
    EXPECT_EQ(std::string(error.what()), "null handle of KS::IGPUVideoFrame");
  }
}

TEST(NullPtrException, CanBeCaughtAsARuntimeError) {
  EXPECT_THROW(config::DoThrowNullPtrException("T"), std::runtime_error);
}

TEST(NullPtrException, IsRaisedByTheUseOfAnEmptyHandle) {
  const classref::InterfaceRef<Interface> empty;
  try {
    empty->Value();
    FAIL() << "nothing was thrown";
  } catch (const RefHost::NullPtrException& error) {
    EXPECT_EQ(std::string(error.what()),
              "null handle of orvcore::(anonymous namespace)::Interface");
  }
}

}  // namespace
}  // namespace orvcore

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
