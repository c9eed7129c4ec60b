#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tools/quillon/clip/ClipPicture.h"
#include "tools/quillon/clip/SequenceName.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/video/ClipReader.h"
#include "tools/quillon/video/Encoding.h"

namespace Quillon::Cli {

/// What a source gives: a picture, or a packet of another stream of its clip.
using SourcePacket = std::shared_ptr<AVPacket>;
using SourceItem = std::variant<ClipPicture, SourcePacket>;

/// Where pictures come from, one after another in the order in which they are shown: a clip, an
/// image sequence, or a still. One thread.
class PictureSource {
 public:
  virtual ~PictureSource() = default;

  virtual const ClipInfo& Info() const = 0;
  /// Samples of the pictures as they are coded.
  virtual SourceSamples Samples() const = 0;
  virtual AVRational TimeBase() const = 0;
  /// The clip that the pictures come from; null for image sequences.
  virtual const ClipInput* Input() const { return nullptr; }
  /// The next picture, or the next packet that lies before it. Nothing at the end, and where the
  /// clip is damaged. Throws CommandError or StillError.
  virtual std::optional<SourceItem> NextItem() = 0;
  /// The next picture; packets are dropped.
  std::optional<ClipPicture> Next();
  /// See `ClipReader::NextPacket`.
  virtual SourcePacket NextPacket(double /*until*/) { return nullptr; }
  /// What was found damaged so far.
  virtual ClipDamage Damage() const { return {}; }
  /// Where damage ended the pictures: reads on, until `isStopped`, to find the rest of it.
  virtual void CountDamage(const std::function<bool()>& /*isStopped*/) {}
};

/// The sequence that a path names as an input; nothing where it names none, or there is a file of
/// that very name.
std::optional<SequenceName> InputSequence(const std::filesystem::path& path);

enum class InputKind { Still, Sequence, Clip };

/// What a path names as an input, by what is there. Throws CommandError or StillError where it can
/// be none of them.
InputKind RequireInput(const std::filesystem::path& path, std::int64_t maxPixels);

/// Opens a clip, an image sequence or a still; `sequenceRate` is a sequence's frame rate. With an
/// index the pictures begin at `first`. Pictures have at most `maxPixels`. Throws CommandError or
/// StillError.
std::unique_ptr<PictureSource> OpenPictures(const std::filesystem::path& path,
                                            AVRational sequenceRate,
                                            const FrameIndex* index = nullptr,
                                            std::int64_t first = 0,
                                            DamagePolicy policy = DamagePolicy::Stop,
                                            std::int64_t maxPixels = kDefaultMaxPixels);

/// Throws CommandError where something is damaged.
void RequireWhole(const std::filesystem::path& path, const ClipDamage& damage);

/// How many pictures there are, counted one by one. Throws CommandError, of damage too.
std::int64_t CountPictures(const std::filesystem::path& path, std::int64_t maxPixels);

}  // namespace Quillon::Cli
