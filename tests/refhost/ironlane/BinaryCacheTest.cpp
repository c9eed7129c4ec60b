#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "refhost/ironlane/BinaryCache.h"
#include "tests/refhost/ironlane/CacheHome.h"

namespace {

namespace fs = std::filesystem;

RefHost::BinaryCache::Binary BinaryOf(const std::string& text) {
  RefHost::BinaryCache::Binary binary;
  for (const char c : text) binary.push_back(static_cast<std::byte>(c));
  return binary;
}

class BinaryCache : public testing::Test {
 protected:
  BinaryCache() { fs::remove_all(folder_); }
  ~BinaryCache() override { fs::remove_all(folder_); }

  std::vector<fs::path> Files() const {
    std::vector<fs::path> files;
    if (!fs::exists(folder_)) return files;
    for (const auto& entry : fs::directory_iterator(folder_)) files.push_back(entry.path());
    return files;
  }

  const fs::path folder_ = fs::path(testing::TempDir()) /
                           (std::string("quillon-binaries-") +
                            testing::UnitTest::GetInstance()->current_test_info()->name());
  const RefHost::BinaryCache cache_{folder_};
  const RefHost::BinaryCache::Binary binary_ = BinaryOf(std::string("\0one\ntwo", 8));
};

TEST_F(BinaryCache, FindsWhatWasStoredUnderTheSameKeyAlone) {
  EXPECT_FALSE(cache_.Find("key").has_value());
  cache_.Store("key", binary_);
  EXPECT_EQ(cache_.Find("key"), binary_);
  EXPECT_EQ(RefHost::BinaryCache(folder_).Find("key"), binary_);
  EXPECT_FALSE(cache_.Find("other key").has_value());
  EXPECT_FALSE(cache_.Find("ke").has_value());
}

TEST_F(BinaryCache, KeepsTheLastThatWasStored) {
  cache_.Store("key", BinaryOf("old"));
  cache_.Store("key", binary_);
  EXPECT_EQ(cache_.Find("key"), binary_);
  EXPECT_EQ(Files().size(), 1U);
}

TEST_F(BinaryCache, ForgetsAtRequest) {
  cache_.Store("key", binary_);
  cache_.Forget("key");
  EXPECT_FALSE(cache_.Find("key").has_value());
  EXPECT_TRUE(Files().empty());
}

TEST_F(BinaryCache, TakesADamagedFileForNone) {
  cache_.Store("key", binary_);
  ASSERT_EQ(Files().size(), 1U);
  std::ifstream in(Files()[0], std::ios::binary);
  const std::string whole{std::istreambuf_iterator<char>(in), {}};
  for (std::size_t i = 0; i < whole.size(); ++i) {
    std::string flipped = whole;
    flipped[i] = static_cast<char>(flipped[i] ^ 0x10);
    std::ofstream(Files()[0], std::ios::binary) << flipped;
    EXPECT_FALSE(cache_.Find("key").has_value()) << "byte " << i;
    std::ofstream(Files()[0], std::ios::binary) << whole.substr(0, i);
    EXPECT_FALSE(cache_.Find("key").has_value()) << "cut to " << i;
  }
  std::ofstream(Files()[0], std::ios::binary) << whole;
  EXPECT_EQ(cache_.Find("key"), binary_);
}

TEST_F(BinaryCache, StoresNothingWhereItMayNotWrite) {
  std::ofstream(folder_.string()) << "a file in the folder's place";
  cache_.Store("key", binary_);
  EXPECT_FALSE(cache_.Find("key").has_value());
}

TEST_F(BinaryCache, LetsSeveralStoreAtOnce) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([this] {
      for (int j = 0; j < 50; ++j) {
        cache_.Store("key", binary_);
        EXPECT_EQ(cache_.Find("key"), binary_);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Files().size(), 1U);
}

/// Where a file that is being read cannot be replaced, there may be nothing.
TEST_F(BinaryCache, GivesAllOrNothingWhileSeveralStore) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this] {
      for (int j = 0; j < 50; ++j) {
        cache_.Store("key", binary_);
        EXPECT_EQ(cache_.Find("key").value_or(binary_), binary_);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(cache_.Find("key"), binary_);
  EXPECT_EQ(Files().size(), 1U);
}

TEST_F(BinaryCache, LiesInTheUsersCacheFolder) {
  SetCacheHome(folder_);
  RefHost::BinaryCache().Store("key", binary_);
  EXPECT_EQ(RefHost::BinaryCache(folder_ / "quillon" / "kernels").Find("key"), binary_);
}

TEST_F(BinaryCache, KeepsNothingWithoutAFolder) {
  const RefHost::BinaryCache none{fs::path()};
  none.Store("key", binary_);
  EXPECT_FALSE(none.Find("key").has_value());
}

}  // namespace
