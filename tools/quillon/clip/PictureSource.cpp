#include "tools/quillon/clip/PictureSource.h"

#include <utility>

#include "tools/quillon/clip/OpenClip.h"
#include "tools/quillon/clip/SequenceSource.h"
#include "tools/quillon/clip/SinglePicture.h"
#include "tools/quillon/io/Still.h"

bool IsClipOrSequence(const std::filesystem::path& path) {
  return SequenceName::Parse(path).has_value() || !IsStill(path);
}

std::optional<ClipPicture> PictureSource::Next() {
  while (auto item = NextItem()) {
    // NOLINTNEXTLINE(bugprone-unchecked-optional-access): the loop checks it
    if (auto* picture = std::get_if<ClipPicture>(&*item)) return std::move(*picture);
  }
  return std::nullopt;
}

std::unique_ptr<PictureSource> OpenPictures(const std::filesystem::path& path,
                                            AVRational sequenceRate, const FrameIndex* index,
                                            std::int64_t first, DamagePolicy policy) {
  if (auto name = SequenceName::Parse(path)) {
    return std::make_unique<SequenceSource>(std::move(*name), sequenceRate, first);
  }
  if (IsStill(path)) return std::make_unique<SinglePicture>(path);
  return OpenClip(path, index, first, policy);
}

std::int64_t CountPictures(const std::filesystem::path& path) {
  if (const auto name = SequenceName::Parse(path)) {
    return static_cast<std::int64_t>(name->ExistingNumbers().size());
  }
  return IsStill(path) ? 1 : CountClipFrames(path);
}
