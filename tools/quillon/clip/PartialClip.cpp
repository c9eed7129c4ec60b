#include "tools/quillon/clip/PartialClip.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <limits>
#include <system_error>

#include "tools/quillon/io/NameBeside.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/video/ClipInput.h"

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

fs::path Beside(const fs::path& output, const std::string& word, const std::string& extension) {
  return NameBeside(output, output.stem().string(), "." + word + extension);
}

}  // namespace

PartialClip::PartialClip(fs::path target)
    : output(std::move(target)),
      clip(Beside(output, "part", output.extension().string())),
      earlier(Beside(output, "part-earlier", output.extension().string())),
      note(Beside(output, "part", output.extension().string() + ".txt")),
      lock(Beside(output, "part", output.extension().string() + ".lock")) {}

void PartialClip::WriteNote(const std::string& settings) const {
  WriteTargetFile(
      note, std::span(reinterpret_cast<const std::uint8_t*>(settings.data()), settings.size()),
      true);
}

std::optional<std::string> PartialClip::ReadNote() const {
  std::ifstream file(note, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

void PartialClip::Remove() const {
  std::error_code ignored;
  for (const fs::path& path : {clip, earlier, note}) fs::remove(path, ignored);
}

EncodedFrames FindWholeGroups(const fs::path& clip) {
  EncodedFrames frames{clip};
  try {
    const ClipInput input = OpenClipInput(clip);
    const AvPacketPtr packet = MakeAvPacket();
    std::int64_t count = 0;
    std::int64_t firstPts = std::numeric_limits<std::int64_t>::max();
    while (ReadPacket(input, *packet) >= 0 && (packet->flags & AV_PKT_FLAG_CORRUPT) == 0) {
      if (packet->stream_index != input.video->index) continue;
      if ((packet->flags & AV_PKT_FLAG_KEY) != 0) frames.count = count;
      firstPts = std::min(firstPts, packet->pts);
      ++count;
    }
    frames.firstPts = firstPts;
  } catch (const CommandError&) {
    frames.count = 0;  // broken off before its head was written
  }
  return frames;
}

}  // namespace Quillon::Cli
