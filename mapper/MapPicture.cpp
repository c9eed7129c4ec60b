#include <algorithm>
#include <utility>

#include "mapper/Content.h"
#include "mapper/Frames.h"
#include "mapper/WrapPicture.h"

namespace Quillon::Mapper {

namespace {

/// At least the rows that chroma is interpolated over.
constexpr int kMargin = 16;

bool HalvesRows(const PixelFormat& format) {
  return format.layout != PixelFormat::Layout::BGRA && format.chroma == PixelFormat::Chroma::C420;
}

Failure CheckRows(const Picture& destination, int first, int last) {
  const bool within = first >= 0 && first < last && last <= destination.height;
  const bool whole = !HalvesRows(destination.format) ||
                     (first % 2 == 0 && (last % 2 == 0 || last == destination.height));
  if (within && whole) return std::nullopt;
  return Error{Code::InvalidArgument,
               "rows " + std::to_string(first) + " to " + std::to_string(last) +
                   " cannot be mapped of " + std::to_string(destination.height) +
                   (within ? ": where chroma has half as many rows, they begin and end even" : ""),
               {}};
}

/// Frames over two pictures of one size, a source and a destination.
struct WrappedPair {
  PX::VideoFrameRef source;
  PX::VideoFrameRef destination;
};

Result<WrappedPair> Wrap(const Plan::Content& plan, const ConstPicture& source,
                         const Picture& destination) {
  const auto from = WrapPicture(Writable(source), plan.source.colors);
  if (!from) return from.error();
  const auto to = WrapPicture(destination, plan.DestinationSpace().Description());
  if (!to) return to.error();
  if (auto failure = CheckSameSize(source, destination)) return *std::move(failure);
  return WrappedPair{*from, *to};
}

}  // namespace

Failure Plan::Map(const ConstPicture& source, const Picture& destination) const {
  auto frames = Wrap(*content_, source, destination);
  if (!frames) return frames.error();
  return MapFrame(*this, frames->source, frames->destination);
}

Failure Plan::MapRows(const ConstPicture& source, const Picture& destination, int first,
                      int last) const {
  const auto frames = Wrap(*content_, source, destination);
  if (!frames) return frames.error();
  if (auto failure = CheckRows(destination, first, last)) return failure;
  PX::VideoFrameRef rows = ShowRows(frames->destination, first, last);
  if (!HalvesRows(source.format) && !HalvesRows(destination.format)) {
    return MapFrame(*this, ShowRows(frames->source, first, last), rows);
  }

  const int from = std::max(0, first / 2 * 2 - kMargin);
  const int to = std::min(source.height, (last + 1) / 2 * 2 + kMargin);
  auto mapped = MakeFrameLike(rows, to - from);
  if (!mapped) return mapped.error();
  if (auto failure = MapFrame(*this, ShowRows(frames->source, from, to), *mapped)) return failure;
  return CopyConverted(ShowRows(*mapped, first - from, last - from), rows, content_->asked.white);
}

}  // namespace Quillon::Mapper
