#include "refhost/kestrel/YCbCrCopy.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "refhost/kestrel/InterleavedCopy.h"
#include "refhost/kestrel/RgbRows.h"
#include "refhost/kestrel/RowWindow.h"
#include "refhost/kestrel/YCbCrRows.h"
#include "refhost/kestrel/ZimgFormats.h"
#include "refhost/kestrel/ZimgGraph.h"

using orvmediatypes::color::ColorDescription;

namespace RefHost {

namespace {

using Converter = std::shared_ptr<const PixelConverter>;
using Graph = std::unique_ptr<const ZimgGraph>;

/// A YCbCr frame, and its rows in a window as zimg sees them.
struct YCbCrSide {
  FrameView frame;
  zimg_image_format format;
  std::array<int, 3> zimgPlanes;
};

std::optional<YCbCrSide> MakeSide(const FrameView& frame, const ColorDescription& colors,
                                  const RowWindow& window) {
  const auto format = ZimgFormatOf(frame.info, colors, window.Width(), window.Height());
  if (!format.has_value()) return std::nullopt;
  return YCbCrSide{frame, *format, ZimgPlanes(colors)};
}

/// The interleaved frame's row that stands for a row of the window.
int PictureRow(const FrameView& frame, int row) { return std::min(row, frame.height - 1); }

class YCbCrToInterleaved final : public BandCopy {
 public:
  YCbCrToInterleaved(const YCbCrSide& source, const FrameView& destination, const RowWindow& window,
                     Graph toRgb, Converter converter)
      : source_(source),
        destination_(destination),
        window_(window),
        toRgb_(std::move(toRgb)),
        converter_(std::move(converter)) {}

  void CopyRows(int first, int last) const override {
    const PlanarBuffer codes(source_.format);
    const PlanarBuffer rgb(FloatRgbLike(source_.format));
    const int windowFirst = window_.FirstRow(first);
    UnpackRows(source_.frame, source_.zimgPlanes, windowFirst, codes);
    toRgb_->Process(codes, rgb);
    const ComponentType type = ComponentTypeOf(destination_.info);
    for (int row = first; row < last; ++row) {
      StoreRow(rgb, row - windowFirst, destination_.width, converter_.get(), type,
               destination_.Row(0, row));
    }
  }

 private:
  YCbCrSide source_;
  FrameView destination_;
  RowWindow window_;
  Graph toRgb_;
  Converter converter_;
};

class InterleavedToYCbCr final : public BandCopy {
 public:
  InterleavedToYCbCr(const FrameView& source, const YCbCrSide& destination, const RowWindow& window,
                     Graph fromRgb, Converter converter)
      : source_(source),
        destination_(destination),
        window_(window),
        fromRgb_(std::move(fromRgb)),
        converter_(std::move(converter)) {}

  void CopyRows(int first, int last) const override {
    const PlanarBuffer rgb(FloatRgbLike(destination_.format));
    const PlanarBuffer codes(destination_.format);
    const int windowFirst = window_.FirstRow(first);
    const ComponentType type = ComponentTypeOf(source_.info);
    for (int row = 0; row < window_.Height(); ++row) {
      LoadRow(source_.Row(0, PictureRow(source_, windowFirst + row)), type, converter_.get(),
              source_.width, rgb, row);
    }
    fromRgb_->Process(rgb, codes);
    PackRows(codes, destination_.zimgPlanes, windowFirst, first, last, destination_.frame);
  }

 private:
  FrameView source_;
  YCbCrSide destination_;
  RowWindow window_;
  Graph fromRgb_;
  Converter converter_;
};

/// The same colours on both sides.
class YCbCrToYCbCr final : public BandCopy {
 public:
  YCbCrToYCbCr(const YCbCrSide& source, const YCbCrSide& destination, const RowWindow& window,
               Graph direct)
      : source_(source), destination_(destination), window_(window), direct_(std::move(direct)) {}

  void CopyRows(int first, int last) const override {
    const PlanarBuffer from(source_.format);
    const PlanarBuffer to(destination_.format);
    const int windowFirst = window_.FirstRow(first);
    UnpackRows(source_.frame, source_.zimgPlanes, windowFirst, from);
    direct_->Process(from, to);
    PackRows(to, destination_.zimgPlanes, windowFirst, first, last, destination_.frame);
  }

 private:
  YCbCrSide source_;
  YCbCrSide destination_;
  RowWindow window_;
  Graph direct_;
};

class ConvertedYCbCr final : public BandCopy {
 public:
  ConvertedYCbCr(const YCbCrSide& source, const YCbCrSide& destination, const RowWindow& window,
                 Graph toRgb, Graph fromRgb, Converter converter)
      : source_(source),
        destination_(destination),
        window_(window),
        toRgb_(std::move(toRgb)),
        fromRgb_(std::move(fromRgb)),
        converter_(std::move(converter)) {}

  void CopyRows(int first, int last) const override {
    const PlanarBuffer from(source_.format);
    const PlanarBuffer rgb(FloatRgbLike(source_.format));
    const PlanarBuffer to(destination_.format);
    const int windowFirst = window_.FirstRow(first);
    UnpackRows(source_.frame, source_.zimgPlanes, windowFirst, from);
    toRgb_->Process(from, rgb);
    ConvertWindow(rgb, windowFirst);
    fromRgb_->Process(rgb, to);
    PackRows(to, destination_.zimgPlanes, windowFirst, first, last, destination_.frame);
  }

 private:
  void ConvertWindow(const PlanarBuffer& rgb, int windowFirst) const {
    const int lastRow = source_.frame.height - 1 - windowFirst;
    for (int row = 0; row < window_.Height(); ++row) {
      if (row <= lastRow) {
        ConvertRow(rgb, row, source_.frame.width, *converter_);
      } else {
        RepeatRow(rgb, lastRow, row);
      }
    }
  }

  YCbCrSide source_;
  YCbCrSide destination_;
  RowWindow window_;
  Graph toRgb_;
  Graph fromRgb_;
  Converter converter_;
};

/// The same colours on both sides.
std::unique_ptr<const BandCopy> MakeDirectCopy(YCbCrSide source, YCbCrSide destination,
                                               const RowWindow& window) {
  // A matrix that derives from the primaries needs them on both sides, where they are the same.
  auto& sourcePrimaries = source.format.color_primaries;
  auto& destinationPrimaries = destination.format.color_primaries;
  if (sourcePrimaries == ZIMG_PRIMARIES_UNSPECIFIED) sourcePrimaries = destinationPrimaries;
  destinationPrimaries = sourcePrimaries;
  Graph direct = ZimgGraph::Build(source.format, destination.format);
  if (direct == nullptr) return nullptr;
  return std::make_unique<YCbCrToYCbCr>(source, destination, window, std::move(direct));
}

Graph BuildToRgb(const YCbCrSide& side) {
  return ZimgGraph::Build(side.format, FloatRgbLike(side.format));
}

Graph BuildFromRgb(const YCbCrSide& side) {
  return ZimgGraph::Build(FloatRgbLike(side.format), side.format);
}

std::unique_ptr<const BandCopy> MakeCopyToInterleaved(const YCbCrSide& source,
                                                      const FrameView& destination,
                                                      const RowWindow& window,
                                                      Converter converter) {
  Graph toRgb = BuildToRgb(source);
  if (toRgb == nullptr) return nullptr;
  return std::make_unique<YCbCrToInterleaved>(source, destination, window, std::move(toRgb),
                                              std::move(converter));
}

std::unique_ptr<const BandCopy> MakeCopyFromInterleaved(const FrameView& source,
                                                        const YCbCrSide& destination,
                                                        const RowWindow& window,
                                                        Converter converter) {
  Graph fromRgb = BuildFromRgb(destination);
  if (fromRgb == nullptr) return nullptr;
  return std::make_unique<InterleavedToYCbCr>(source, destination, window, std::move(fromRgb),
                                              std::move(converter));
}

std::unique_ptr<const BandCopy> MakeConvertedCopy(const YCbCrSide& source,
                                                  const YCbCrSide& destination,
                                                  const RowWindow& window, Converter converter) {
  Graph toRgb = BuildToRgb(source);
  Graph fromRgb = BuildFromRgb(destination);
  if (toRgb == nullptr || fromRgb == nullptr) return nullptr;
  return std::make_unique<ConvertedYCbCr>(source, destination, window, std::move(toRgb),
                                          std::move(fromRgb), std::move(converter));
}

}  // namespace

std::unique_ptr<const BandCopy> MakeYCbCrCopy(const FrameView& source,
                                              const ColorDescription& sourceColors,
                                              const FrameView& destination,
                                              const ColorDescription& destinationColors,
                                              Converter converter) {
  const RowWindow window(source, destination);
  if (!source.info.IsYCbCr()) {
    const auto to = MakeSide(destination, destinationColors, window);
    if (!to.has_value()) return nullptr;
    return MakeCopyFromInterleaved(source, *to, window, std::move(converter));
  }
  const auto from = MakeSide(source, sourceColors, window);
  if (!from.has_value()) return nullptr;
  if (!destination.info.IsYCbCr()) {
    return MakeCopyToInterleaved(*from, destination, window, std::move(converter));
  }
  const auto to = MakeSide(destination, destinationColors, window);
  if (!to.has_value()) return nullptr;
  if (converter == nullptr) return MakeDirectCopy(*from, *to, window);
  return MakeConvertedCopy(*from, *to, window, std::move(converter));
}

}  // namespace RefHost
