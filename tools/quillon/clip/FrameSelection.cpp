#include "tools/quillon/clip/FrameSelection.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "tools/quillon/options/Numbers.h"

namespace Quillon::Cli {

namespace {

constexpr std::int64_t kLargestNumber = std::numeric_limits<std::int32_t>::max();

std::optional<std::int64_t> ParseCount(std::string_view text) {
  if (text.starts_with('-')) return std::nullopt;
  return ParseNumberIn<std::int64_t>(text, 0, kLargestNumber);
}

std::optional<FrameRange> ParseRange(std::string_view text) {
  const std::size_t dash = text.find('-');
  const auto first = ParseCount(text.substr(0, dash));
  const auto last = dash == std::string_view::npos ? first : ParseCount(text.substr(dash + 1));
  if (!first || !last || *last < *first) return std::nullopt;
  return FrameRange{*first, *last};
}

std::vector<FrameRange> Joined(std::vector<FrameRange> ranges) {
  std::sort(ranges.begin(), ranges.end(),
            [](const FrameRange& a, const FrameRange& b) { return a.first < b.first; });
  std::vector<FrameRange> joined;
  for (const FrameRange& range : ranges) {
    if (!joined.empty() && range.first <= joined.back().last + 1) {
      joined.back().last = std::max(joined.back().last, range.last);
    } else {
      joined.push_back(range);
    }
  }
  return joined;
}

}  // namespace

bool FrameSelection::Contains(std::int64_t frame) const {
  return IsAll() || std::any_of(ranges_.begin(), ranges_.end(), [frame](const FrameRange& range) {
           return range.first <= frame && frame <= range.last;
         });
}

std::optional<std::int64_t> FrameSelection::Last() const {
  if (IsAll()) return std::nullopt;
  return ranges_.back().last;
}

std::int64_t FrameSelection::CountOf(std::int64_t frames) const {
  if (IsAll()) return frames;
  std::int64_t count = 0;
  for (const FrameRange& range : ranges_) {
    count += std::max<std::int64_t>(0, std::min(range.last + 1, frames) - range.first);
  }
  return count;
}

FrameSelection FrameSelection::Without(std::int64_t count, std::int64_t frames) const {
  std::vector<FrameRange> left;
  for (FrameRange range : IsAll() ? std::vector<FrameRange>{{0, frames - 1}} : ranges_) {
    range.last = std::min(range.last, frames - 1);
    const std::int64_t length = range.last - range.first + 1;
    if (length > count) left.push_back({range.first + count, range.last});
    count = std::max<std::int64_t>(0, count - std::max<std::int64_t>(0, length));
  }
  return FrameSelection(std::move(left));
}

std::optional<std::vector<FrameRange>> ParseFrameRanges(const std::string& text) {
  std::vector<FrameRange> ranges;
  std::string_view rest = text;
  for (;;) {
    const std::size_t comma = rest.find(',');
    const auto range = ParseRange(rest.substr(0, comma));
    if (!range) return std::nullopt;
    ranges.push_back(*range);
    if (comma == std::string_view::npos) return Joined(std::move(ranges));
    rest.remove_prefix(comma + 1);
  }
}

std::optional<Chunk> ParseChunk(const std::string& text) {
  const std::string_view view = text;
  const std::size_t slash = view.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  const auto part = ParseCount(view.substr(0, slash));
  const auto parts = ParseCount(view.substr(slash + 1));
  if (!part || !parts || *part < 1 || *part > *parts) return std::nullopt;
  return Chunk{*part, *parts};
}

std::optional<FrameRange> RangeOf(const Chunk& chunk, std::int64_t frames) {
  const FrameRange range{frames * (chunk.part - 1) / chunk.parts,
                         frames * chunk.part / chunk.parts - 1};
  if (range.last < range.first) return std::nullopt;
  return range;
}

}  // namespace Quillon::Cli
