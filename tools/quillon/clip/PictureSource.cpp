#include "tools/quillon/clip/PictureSource.h"

#include <system_error>
#include <utility>

#include "tools/quillon/clip/OpenClip.h"
#include "tools/quillon/clip/SequenceSource.h"
#include "tools/quillon/clip/SinglePicture.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

std::optional<SequenceName> InputSequence(const std::filesystem::path& path) {
  std::error_code error;
  return std::filesystem::exists(path, error) ? std::nullopt : SequenceName::Parse(path);
}

InputKind RequireInput(const std::filesystem::path& path, std::int64_t maxPixels) {
  if (const auto name = InputSequence(path)) {
    if (!name->ExistingNumbers().empty()) return InputKind::Sequence;
    throw CommandError(ExitCode::CannotRead,
                       path.string() + ": there is no picture of this sequence; check the name");
  }
  if (IsStill(path)) return InputKind::Still;
  RequireClip(path, maxPixels);
  return InputKind::Clip;
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
                                            std::int64_t first, DamagePolicy policy,
                                            std::int64_t maxPixels) {
  if (auto name = InputSequence(path)) {
    return std::make_unique<SequenceSource>(std::move(*name), sequenceRate, first, maxPixels);
  }
  if (IsStill(path)) return std::make_unique<SinglePicture>(path, maxPixels);
  return OpenClip(path, index, first, policy, maxPixels);
}

void RequireWhole(const std::filesystem::path& path, const ClipDamage& damage) {
  if (damage.places == 0) return;
  throw CommandError(ExitCode::CannotRead, path.string() + ": it is damaged: " + damage.first);
}

std::int64_t CountPictures(const std::filesystem::path& path, std::int64_t maxPixels) {
  if (const auto name = InputSequence(path)) {
    return static_cast<std::int64_t>(name->ExistingNumbers().size());
  }
  return IsStill(path) ? 1 : CountClipFrames(path, maxPixels);
}

}  // namespace Quillon::Cli
