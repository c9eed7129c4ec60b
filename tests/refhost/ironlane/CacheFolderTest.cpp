#include <cstdlib>

#include <gtest/gtest.h>

#include "refhost/ironlane/CacheFolder.h"

namespace {

TEST(CacheFolder, IsTheCachesOfTheUserAndElseBelowTheHomeFolder) {
  ::setenv("HOME", "/home/x", 1);
  ::setenv("XDG_CACHE_HOME", "/caches", 1);
  EXPECT_EQ(RefHost::UserCacheFolder(), "/caches/");
  ::setenv("XDG_CACHE_HOME", "caches", 1);
  EXPECT_EQ(RefHost::UserCacheFolder(), "/home/x/.cache") << "a relative path counts for nothing";
  ::unsetenv("XDG_CACHE_HOME");
  EXPECT_EQ(RefHost::UserCacheFolder(), "/home/x/.cache");
}

TEST(CacheFolder, IsNoneWhereTheUserHasNone) {
  ::unsetenv("XDG_CACHE_HOME");
  ::unsetenv("HOME");
  EXPECT_TRUE(RefHost::UserCacheFolder().empty());
}

}  // namespace
