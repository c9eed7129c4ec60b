#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Quillon::Cli {

/// Frames from `first` to `last`, both counted from 0 and both included.
struct FrameRange {
  std::int64_t first = 0;
  std::int64_t last = 0;
  friend bool operator==(const FrameRange&, const FrameRange&) = default;
};

/// The frames of a clip that are to be mapped. By default all.
class FrameSelection {
 public:
  FrameSelection() = default;
  /// Ranges in rising order that do not touch each other.
  explicit FrameSelection(std::vector<FrameRange> ranges) : ranges_(std::move(ranges)) {}

  bool IsAll() const { return ranges_.empty(); }
  bool Contains(std::int64_t frame) const;
  /// 0 where all are selected.
  std::int64_t First() const { return IsAll() ? 0 : ranges_.front().first; }
  /// Nothing where all are selected.
  std::optional<std::int64_t> Last() const;
  /// How many of a clip's `frames` are selected.
  std::int64_t CountOf(std::int64_t frames) const;
  const std::vector<FrameRange>& Ranges() const { return ranges_; }
  /// What is left of a clip of `frames` when the first `count` selected frames are done. Frames
  /// past the clip's end are not selected any more.
  FrameSelection Without(std::int64_t count, std::int64_t frames) const;

 private:
  std::vector<FrameRange> ranges_;
};

/// Ranges from text such as "10-99,200", sorted and joined. Nothing for other texts.
std::optional<std::vector<FrameRange>> ParseFrameRanges(const std::string& text);

/// Part `part` of `parts`, counted from 1.
struct Chunk {
  std::int64_t part = 1;
  std::int64_t parts = 1;
};

/// "2/8". Nothing for other texts.
std::optional<Chunk> ParseChunk(const std::string& text);

/// The frames of a chunk of a clip; the chunks of a clip hold each of its frames once. Nothing
/// where the chunk is empty.
std::optional<FrameRange> RangeOf(const Chunk& chunk, std::int64_t frames);

}  // namespace Quillon::Cli
