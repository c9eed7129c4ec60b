#include <cerrno>
#include <csignal>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/tools/io/StillTestSupport.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/io/WriteStill.h"
#include "tools/quillon/process/UnfinishedFile.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

/// What the system's calls do first in this program: 0 to go on, else they fail with this error.
std::function<int()> onRename;
std::function<int()> onLink;

class Hooks {
 public:
  Hooks(std::function<int()> rename, std::function<int()> link) {
    onRename = std::move(rename);
    onLink = std::move(link);
  }
  ~Hooks() { onRename = onLink = nullptr; }
  Hooks(const Hooks&) = delete;
  Hooks& operator=(const Hooks&) = delete;
};

StillOutput SmallOutput() {
  StillOutput output;
  output.frame =
      MakePicture(4, 4, Tagged(1, 13), [](int x, int y) { return Gradient(x, y, 4, 4); });
  return output;
}

/// Limits the size of files that this process writes.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limited = before_;
    limited.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limited);
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int) = nullptr;
};

class Umask {
 public:
  explicit Umask(mode_t mask) : before_(umask(mask)) {}
  ~Umask() { umask(before_); }
  Umask(const Umask&) = delete;
  Umask& operator=(const Umask&) = delete;

 private:
  mode_t before_;
};

}  // namespace

/// These stand in for the C library's.
extern "C" {
int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
              unsigned flags) noexcept {
  if (onRename) errno = onRename();
  if (onRename && errno != 0) return -1;
  return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}
int link(const char* from, const char* to) noexcept {
  if (onLink) errno = onLink();
  if (onLink && errno != 0) return -1;
  return static_cast<int>(syscall(SYS_link, from, to));
}
}

TEST(WriteTargetFile, WritesTheBytesAndLeavesNothingElse) {
  const ScratchFolder folder;
  const Bytes bytes{1, 2, 3};
  WriteTargetFile(folder / "a.png", bytes, false);
  EXPECT_EQ(ReadBytes(folder / "a.png"), bytes);
  EXPECT_THAT(folder.Names(), ElementsAre("a.png"));
}

TEST(WriteTargetFile, RefusesAnExistingFileUnlessItMayBeReplaced) {
  const ScratchFolder folder;
  WriteBytes(folder / "a.png", {9});
  const auto failure = FailureOf([&] { WriteTargetFile(folder / "a.png", Bytes{1}, false); });
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, StillErrorKind::CannotWrite);
  EXPECT_THAT(failure->message, HasSubstr("--overwrite"));
  EXPECT_THAT(failure->message, HasSubstr("a.png"));
  EXPECT_EQ(ReadBytes(folder / "a.png"), Bytes{9});
  EXPECT_THAT(folder.Names(), ElementsAre("a.png"));
  WriteTargetFile(folder / "a.png", Bytes{1}, true);
  EXPECT_EQ(ReadBytes(folder / "a.png"), Bytes{1});
}

TEST(WriteTargetFile, LeavesNothingWhenTheDiskIsFull) {
  const ScratchFolder folder;
  WriteBytes(folder / "old.png", {9});
  std::optional<Failure> fresh;
  std::optional<Failure> replaced;
  {
    const FileSizeLimit limit(1000);
    fresh = FailureOf([&] { WriteTargetFile(folder / "a.png", Bytes(100000, 1), false); });
    replaced = FailureOf([&] { WriteTargetFile(folder / "old.png", Bytes(100000, 1), true); });
  }
  ASSERT_TRUE(fresh);
  EXPECT_EQ(fresh->kind, StillErrorKind::CannotWrite);
  EXPECT_THAT(fresh->message, HasSubstr("writing failed"));
  ASSERT_TRUE(replaced);
  EXPECT_EQ(ReadBytes(folder / "old.png"), Bytes{9});
  EXPECT_THAT(folder.Names(), ElementsAre("old.png"));
}

TEST(WriteTargetFile, NoticesAFailureThatShowsOnlyOnClosing) {
  const ScratchFolder folder;
  std::optional<Failure> failure;
  {
    const FileSizeLimit limit(10);
    failure = FailureOf([&] { WriteTargetFile(folder / "a.png", Bytes(20, 1), false); });
  }
  EXPECT_TRUE(failure);
  EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST(WriteTargetFile, GivesPermissionsByTheUmask) {
  const ScratchFolder folder;
  const Umask umask(0027);
  WriteTargetFile(folder / "a.png", Bytes{1}, false);
  EXPECT_EQ(fs::status(folder / "a.png").permissions(), static_cast<fs::perms>(0640));
}

TEST(CheckTargetFile, RefusesFoldersDevicesAndMissingFolders) {
  const ScratchFolder folder;
  fs::create_directory(folder / "b.png");
  const auto kindOf = [](const fs::path& path) {
    const auto failure = FailureOf([&] { CheckTargetFile(path, true); });
    return failure ? failure->message : "";
  };
  EXPECT_THAT(kindOf(folder / "b.png"), HasSubstr("it is a folder"));
  EXPECT_THAT(kindOf(folder / "missing" / "a.png"), HasSubstr("does not exist"));
  EXPECT_THAT(kindOf("/dev/full"), HasSubstr("no regular file"));
  EXPECT_THAT(kindOf("a.png"), "");
}

TEST(WriteStill, NamesTheFormatsItWrites) {
  const ScratchFolder folder;
  for (const char* name : {"a.jpg", "a", "a.png.txt"}) {
    const auto failure = FailureOf([&] { WriteStill(SmallOutput(), folder / name); });
    ASSERT_TRUE(failure) << name;
    EXPECT_EQ(failure->kind, StillErrorKind::NotSupported);
    EXPECT_THAT(failure->message, HasSubstr(".exr, .png or .avif"));
  }
  EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST(WriteStill, TakesExtensionsInCapitals) {
  const ScratchFolder folder;
  WriteStill(SmallOutput(), folder / "A.PNG");
  EXPECT_EQ(ReadBytes(folder / "A.PNG")[1], 'P');
}

TEST(WriteStill, LeavesNothingWhenEncodingFails) {
  const ScratchFolder folder;
  StillOutput output = SmallOutput();
  output.frame->SetColorSpace({});
  EXPECT_TRUE(FailureOf([&] { WriteStill(output, folder / "a.png"); }));
  EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST(CheckStillTarget, FailsAsWritingWould) {
  const ScratchFolder folder;
  WriteBytes(folder / "a.png", {1});
  EXPECT_EQ(FailureOf([&] { CheckStillTarget(folder / "a.png", false); })->kind,
            StillErrorKind::CannotWrite);
  EXPECT_EQ(FailureOf([&] { CheckStillTarget(folder / "a.gif", true); })->kind,
            StillErrorKind::NotSupported);
  EXPECT_FALSE(FailureOf([&] { CheckStillTarget(folder / "a.png", true); }));
  EXPECT_EQ(ReadBytes(folder / "a.png"), Bytes{1});
}

TEST(WriteTargetFile, ReplacesNothingThatCameWhileItWrote) {
  const auto none = [] { return 0; };
  const auto missing = [] { return EINVAL; };
  for (const int error : {0, EINVAL}) {
    const ScratchFolder folder;
    const Hooks hooks(
        [&] {
          WriteBytes(folder / "a.png", {9});
          return error;
        },
        none);
    const auto failure = FailureOf([&] { WriteTargetFile(folder / "a.png", Bytes{1}, false); });
    ASSERT_TRUE(failure);
    EXPECT_THAT(failure->message, HasSubstr("it exists already"));
    EXPECT_EQ(ReadBytes(folder / "a.png"), Bytes{9});
    EXPECT_THAT(folder.Names(), ElementsAre("a.png"));
  }
  const ScratchFolder folder;
  const Hooks hooks(missing, [&] {
    WriteBytes(folder / "a.png", {9});
    return EPERM;
  });
  EXPECT_TRUE(FailureOf([&] { WriteTargetFile(folder / "a.png", Bytes{1}, false); }));
  EXPECT_EQ(ReadBytes(folder / "a.png"), Bytes{9});
}

TEST(WriteTargetFile, WritesWhereTheFileSystemOffersLess) {
  for (const int link : {0, EPERM}) {
    const ScratchFolder folder;
    const Hooks hooks([] { return EINVAL; }, [link] { return link; });
    WriteTargetFile(folder / "a.png", Bytes{1}, false);
    EXPECT_EQ(ReadBytes(folder / "a.png"), Bytes{1});
    EXPECT_THAT(folder.Names(), ElementsAre("a.png"));
  }
}

TEST(WriteTargetFile, LeavesNothingWhenASignalEndsTheProgram) {
  const ScratchFolder folder;
  EXPECT_EXIT(
      {
        const Hooks hooks(
            [] {
              RemoveUnfinishedFiles();
              _exit(7);
              return 0;
            },
            nullptr);
        WriteTargetFile(folder / "a.png", Bytes{1}, false);
      },
      testing::ExitedWithCode(7), "");
  EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST(WriteTargetFile, WritesUnderTheLongestNames) {
  const ScratchFolder folder;
  for (const std::size_t length : {220U, 240U, 255U}) {
    const std::string name = std::string(length - 4, 'a') + ".png";
    WriteTargetFile(folder / name, Bytes{1}, false);
    EXPECT_EQ(ReadBytes(folder / name), Bytes{1});
  }
  const auto failure = FailureOf([&] { CheckTargetFile(folder / std::string(256, 'a'), false); });
  ASSERT_TRUE(failure);
  EXPECT_THAT(failure->message, HasSubstr("File name too long"));
}

TEST(WriteTargetFile, ReplacesALinkItselfAndOnlyWhereItMay) {
  const ScratchFolder folder;
  WriteBytes(folder / "old.png", {9});
  fs::create_symlink(folder / "old.png", folder / "file.png");
  fs::create_symlink(folder / "nowhere", folder / "dangling.png");
  for (const char* link : {"file.png", "dangling.png"}) {
    const auto failure = FailureOf([&] { WriteTargetFile(folder / link, Bytes{1}, false); });
    ASSERT_TRUE(failure) << link;
    EXPECT_THAT(failure->message, HasSubstr("it exists already"));
    EXPECT_TRUE(fs::is_symlink(folder / link));
    WriteTargetFile(folder / link, Bytes{1}, true);
    EXPECT_FALSE(fs::is_symlink(folder / link));
    EXPECT_EQ(ReadBytes(folder / link), Bytes{1});
  }
  EXPECT_EQ(ReadBytes(folder / "old.png"), Bytes{9});
  EXPECT_FALSE(fs::exists(folder / "nowhere"));
}
