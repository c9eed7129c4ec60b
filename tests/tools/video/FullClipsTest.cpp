#include <gmock/gmock.h>

#include "tests/tools/video/ClipFiles.h"
#include "tests/tools/video/FullClips.h"
#include "tools/quillon/video/ClipInput.h"

using namespace Quillon::Cli;

namespace {

/// Codecs of all streams, in the order of the file.
std::vector<std::string> CodecsOf(const std::filesystem::path& path) {
  const ClipInput input = OpenClipInput(path);
  std::vector<std::string> names;
  for (unsigned i = 0; i < input.container->nb_streams; ++i) {
    names.emplace_back(avcodec_get_name(input.container->streams[i]->codecpar->codec_id));
  }
  return names;
}

struct FullCase {
  std::string name;
  std::vector<std::string> codecs;
};

class FullClips : public testing::TestWithParam<FullCase> {};

TEST_P(FullClips, HoldWhatTheirContainersCanAndMapUndamaged) {
  const ScratchFolder folder;
  const auto clip = MakeClipWithEverything(folder, GetParam().name, 30);
  EXPECT_THAT(CodecsOf(clip), testing::IsSupersetOf(GetParam().codecs));
  const RunResult run = RunQuillon({"map", "--codec", "ffv1", clip, folder / "mapped.mkv"});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.err, testing::Not(testing::HasSubstr("damaged")));
  EXPECT_EQ(DecodeClip(folder / "mapped.mkv").size(), 30U);
  EXPECT_EQ(PacketsOf(folder / "mapped.mkv", AVMEDIA_TYPE_AUDIO).size(),
            PacketsOf(clip, AVMEDIA_TYPE_AUDIO).size());
}

INSTANTIATE_TEST_SUITE_P(Containers, FullClips,
                         testing::Values(FullCase{"full.mp4", {"hevc", "aac", "mov_text", "png"}},
                                         FullCase{"full.mov", {"hevc", "aac", "mov_text"}},
                                         FullCase{"full.mkv", {"hevc", "aac", "subrip", "ttf"}},
                                         FullCase{"full.webm", {"av1", "opus", "webvtt"}},
                                         FullCase{"full.ts", {"hevc", "aac"}}),
                         [](const auto& info) { return info.param.name.substr(5); });

}  // namespace
