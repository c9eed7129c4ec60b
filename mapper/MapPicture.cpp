#include <algorithm>
#include <cstddef>
#include <type_traits>

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

/// Rows from `first` to before `last`. Where the format halves them, `first` is even.
template <class Byte>
BasicPicture<Byte> Cut(const BasicPicture<Byte>& picture, int first, int last) {
  using Address = std::conditional_t<std::is_const_v<Byte>, const std::byte*, std::byte*>;
  BasicPicture<Byte> cut = picture;
  cut.height = last - first;
  for (std::size_t i = 0; i < cut.planes.size(); ++i) {
    const int row = i > 0 && HalvesRows(picture.format) ? first / 2 : first;
    if (cut.planes[i] == nullptr) continue;
    cut.planes[i] = static_cast<Address>(cut.planes[i]) + std::ptrdiff_t{row} * picture.rowBytes[i];
  }
  return cut;
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

}  // namespace

Failure Plan::Map(const ConstPicture& source, const Picture& destination) const {
  const auto from = WrapPicture(Writable(source), content_->source.colors);
  if (!from) return from.error();
  auto to = WrapPicture(destination, content_->DestinationSpace().Description());
  if (!to) return to.error();
  if (auto failure = CheckSameSize(source, destination)) return failure;
  return MapFrame(*this, *from, *to);
}

Failure Plan::MapRows(const ConstPicture& source, const Picture& destination, int first,
                      int last) const {
  const ColorDescription& colors = content_->DestinationSpace().Description();
  for (const Picture& picture : {Writable(source), destination}) {
    if (const auto whole = WrapPicture(picture, colors); !whole) return whole.error();
  }
  if (auto failure = CheckSameSize(source, destination)) return failure;
  if (auto failure = CheckRows(destination, first, last)) return failure;
  if (!HalvesRows(source.format) && !HalvesRows(destination.format)) {
    return Map(Cut(source, first, last), Cut(destination, first, last));
  }

  const int from = std::max(0, first / 2 * 2 - kMargin);
  const int to = std::min(source.height, (last + 1) / 2 * 2 + kMargin);
  const auto window = WrapPicture(Writable(Cut(source, from, to)), content_->source.colors);
  if (!window) return window.error();
  auto mapped = MakePicture(destination.format, source.width, to - from, colors);
  if (!mapped) return mapped.error();
  if (auto failure = MapFrame(*this, *window, mapped->frame)) return failure;
  const auto wanted = WrapPicture(Cut(mapped->picture, first - from, last - from), colors);
  if (!wanted) return wanted.error();
  const auto rows = WrapPicture(Cut(destination, first, last), colors);
  if (!rows) return rows.error();
  return CopyConverted(*wanted, *rows, content_->asked.white);
}

}  // namespace Quillon::Mapper
