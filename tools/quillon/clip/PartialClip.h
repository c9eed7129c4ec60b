#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace Quillon::Cli {

/// The files of a clip that is being written: "clip.part.mp4" beside "clip.mp4" (of long names a
/// part, see NameBeside) and, beside it, a note of what it was made from and how, by which a later
/// run knows whether it may go on with it.
struct PartialClip {
  explicit PartialClip(std::filesystem::path output);

  std::filesystem::path output;
  std::filesystem::path clip;     ///< what is written now
  std::filesystem::path earlier;  ///< what a run that goes on takes the beginning from
  std::filesystem::path note;
  std::filesystem::path lock;  ///< of the run that writes them

  void WriteNote(const std::string& settings) const;
  /// What the note says; nothing where there is none.
  std::optional<std::string> ReadNote() const;
  /// Removes all of them but the lock, which its owner does.
  void Remove() const;
};

/// The whole groups of pictures at the beginning of a clip that was broken off.
struct EncodedFrames {
  std::filesystem::path clip;
  std::int64_t count = 0;     ///< of video packets; 0: none
  std::int64_t firstPts = 0;  ///< of the first frame, in the clip's own time base
};

/// Counts them: all video packets before the last key frame, whose group may be incomplete. None
/// where the file is not there.
EncodedFrames FindWholeGroups(const std::filesystem::path& clip);

}  // namespace Quillon::Cli
