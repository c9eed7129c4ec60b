#include <cstdlib>

#include <gtest/gtest.h>

#include "refhost/ironlane/CacheFolder.h"

namespace {

TEST(CacheFolder, IsTheUsersFolderForThisMachine) {
  _wputenv_s(L"LOCALAPPDATA", L"C:\\users\\\u017Bo\u00EB\u4E2D\\AppData\\Local");
  EXPECT_EQ(RefHost::UserCacheFolder().native(), L"C:\\users\\\u017Bo\u00EB\u4E2D\\AppData\\Local");
}

TEST(CacheFolder, IsNoneWhereTheUserHasNone) {
  _wputenv_s(L"LOCALAPPDATA", L"AppData");
  EXPECT_TRUE(RefHost::UserCacheFolder().empty()) << "a relative path counts for nothing";
  _wputenv_s(L"LOCALAPPDATA", L"");
  EXPECT_TRUE(RefHost::UserCacheFolder().empty());
}

}  // namespace
