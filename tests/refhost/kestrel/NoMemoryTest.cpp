#include <cstddef>
#include <cstdlib>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "refhost/ResultCodes.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"

namespace {

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // they need the address space
/// What comes of a frame of 4 GiB in a process that may not have as much.
int ResultWithoutMemory() {
  constexpr rlimit kLimit{std::size_t{1} << 31, std::size_t{1} << 31};
  setrlimit(RLIMIT_AS, &kLimit);
  PX::VideoFrameRef frame;
  return RefHost::CreateSystemFrame(
      frame, {.format = RefHost::kBgraFloat, .width = 1 << 14, .height = 1 << 14});
}

TEST(CreateSystemFrame, ReturnsACodeWhenThereIsNoMemory) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(std::_Exit(ResultWithoutMemory() == RefHost::kInvalidFrame ? 7 : 1),
              testing::ExitedWithCode(7), "");
}
#endif

}  // namespace
