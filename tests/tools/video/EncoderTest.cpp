#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "tests/tools/video/ClipFiles.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/video/AvPictures.h"
#include "tools/quillon/video/Encoding.h"

using namespace Quillon::Cli;

namespace {

using testing::HasSubstr;

Encoding EncodingOf(VideoCodec codec, int width, int height) {
  Encoding encoding = GreyEncoding();
  EncodingWishes wishes;
  wishes.codec = codec;
  if (codec == VideoCodec::H264) wishes.preset = "veryslow";
  Encoding settled = SettleEncoding(wishes, {}, encoding.tags, "a.mkv");
  settled.width = width;
  settled.height = height;
  return settled;
}

/// The process gets no more than so much memory more than it has while the object lives.
class MemoryLimit {
 public:
  explicit MemoryLimit(rlim_t bytesMore) {
    getrlimit(RLIMIT_AS, &before_);
    std::ifstream sizes("/proc/self/statm");
    rlim_t pages = 0;
    sizes >> pages;
    const rlim_t has = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
    const rlimit limit{has + bytesMore, before_.rlim_max};
    setrlimit(RLIMIT_AS, &limit);
  }
  ~MemoryLimit() { setrlimit(RLIMIT_AS, &before_); }
  MemoryLimit(const MemoryLimit&) = delete;
  MemoryLimit& operator=(const MemoryLimit&) = delete;

 private:
  rlimit before_{};
};

/// What an encoder says that has to encode frames with no more than so much memory.
std::string FailureWithin(const Encoding& encoding, rlim_t bytesMore, ExitCode& code) {
  AvFramePool pool(encoding.pixelFormat, encoding.width, encoding.height);
  const auto frame = pool.Take();
  const AvPacketPtr packet = MakeAvPacket();
  try {
    const MemoryLimit limit(bytesMore);
    Encoder encoder(encoding, true, "a.mkv");
    for (int i = 0; i < 3; ++i) {
      frame->pts = i;
      encoder.Send(frame.get());
      while (encoder.Receive(*packet)) av_packet_unref(packet.get());
    }
  } catch (const CommandError& error) {
    code = error.Code();
    return error.what();
  }
  return "";
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kLimitsMemory = false;
#else
constexpr bool kLimitsMemory = true;
#endif

}  // namespace

TEST(Encoder, CanBeClosedBeforeItsFirstFrame) {
  for (const auto& codec : kVideoCodecs) {
    const Encoder encoder(EncodingOf(codec.value, 128, 96), true, "a.mkv");
  }
}

TEST(Encoder, TellsWhenMemoryIsLackingAtItsStart) {
  if (!kLimitsMemory) GTEST_SKIP() << "sanitizers need memory without a limit";
  ExitCode code = ExitCode::Success;
  const std::string failure =
      FailureWithin(EncodingOf(VideoCodec::H264, 4096, 2160), 50'000'000, code);
  EXPECT_THAT(failure, HasSubstr("a.mkv: the encoder libx264 has not enough memory"));
  EXPECT_EQ(code, ExitCode::CannotWrite);
}

TEST(Encoder, TellsWhenMemoryIsLackingInMidRun) {
  if (!kLimitsMemory) GTEST_SKIP() << "sanitizers need memory without a limit";
  ExitCode code = ExitCode::Success;
  const std::string failure =
      FailureWithin(EncodingOf(VideoCodec::Ffv1, 4096, 2160), 400'000'000, code);
  EXPECT_THAT(failure, HasSubstr("a.mkv: the encoder ffv1 has not enough memory"));
  EXPECT_THAT(failure, testing::Not(HasSubstr("--codec")));
  EXPECT_EQ(code, ExitCode::CannotWrite);
}

TEST(Encoder, TellsOfPicturesThatAreTooLargeForIt) {
  try {
    const Encoder encoder(EncodingOf(VideoCodec::H264, 16386, 16), true, "a.mkv");
    FAIL();
  } catch (const CommandError& error) {
    EXPECT_EQ(error.Code(), ExitCode::NotSupported);
    EXPECT_THAT(error.what(), HasSubstr("does not take pictures of 16386x16"));
  }
}
