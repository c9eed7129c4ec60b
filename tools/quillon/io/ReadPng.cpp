#include <algorithm>
#include <bit>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "mapper/Colors.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/ColorTags.h"
#include "tools/quillon/io/FramePixels.h"
#include "tools/quillon/io/PngChunks.h"
#include "tools/quillon/io/PngFile.h"
#include "tools/quillon/io/PngHandle.h"
#include "tools/quillon/io/StillReaders.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

constexpr png_byte kColorChunks[] = "cICP\0mDCV\0mDCv\0cLLI\0cLLi";
constexpr png_byte kTextChunks[] = "tEXt\0zTXt\0iTXt";

/// The most that deflate makes of a byte.
constexpr double kMostDeflated = 1032.0;

/// What of the pieces is still to be read.
struct Cursor {
  std::span<const std::span<const std::uint8_t>> pieces;
  std::size_t position = 0;  ///< in the first of them
};

void OnRead(png_structp png, png_bytep destination, std::size_t count) {
  auto* cursor = static_cast<Cursor*>(png_get_io_ptr(png));
  while (count > 0) {
    if (cursor->pieces.empty()) png_error(png, "it ends too early");
    const auto left = cursor->pieces.front().subspan(cursor->position);
    const std::size_t step = std::min(count, left.size());
    std::copy_n(left.begin(), step, destination);
    destination += step;
    count -= step;
    cursor->position += step;
    if (cursor->position < cursor->pieces.front().size()) continue;
    cursor->pieces = cursor->pieces.subspan(1);
    cursor->position = 0;
  }
}

/// Everything before the pixels. A critical chunk with a wrong CRC is an error; damaged ancillary
/// chunks do not come here.
void ReadHeader(PngHandle& handle, Cursor& cursor) {
  png_structp png = handle.Png();
  png_set_read_fn(png, &cursor, OnRead);
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_ALWAYS, kColorChunks, 5);
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, kTextChunks, 3);
  png_read_info(png, handle.Info());
}

/// What the colour chunks say.
struct PngTags {
  std::optional<PngCicp> cicp;
  ColorDescription mastering;
  ContentLight light;
};

PngTags ReadKeptChunks(PngHandle& handle, std::vector<std::string>& remarks) {
  PngTags tags;
  png_unknown_chunkp chunks = nullptr;
  const int count = png_get_unknown_chunks(handle.Png(), handle.Info(), &chunks);
  for (int i = 0; i < count; ++i) {
    const std::string_view name(reinterpret_cast<const char*>(chunks[i].name), 4);
    const std::span<const std::uint8_t> data(chunks[i].data, chunks[i].size);
    bool understood = true;
    if (name == "cICP") {
      tags.cicp = ParseCicp(data);
      understood = tags.cicp.has_value();
    } else if (name == "mDCV" || name == "mDCv") {
      understood = ParseMdcv(data, tags.mastering);
    } else if (name == "cLLI" || name == "cLLi") {
      const auto light = ParseClli(data);
      understood = light.has_value();
      if (light) tags.light = *light;
    }
    if (!understood) {
      remarks.push_back(std::string(name) + " chunk of " + std::to_string(data.size()) +
                        " bytes ignored");
    }
  }
  return tags;
}

/// The transfer that a gAMA chunk means: 100000 / gamma exponents that H.273 has a code point for.
std::uint8_t TransferOfGamma(png_fixed_point gamma) {
  switch (gamma) {
    case 45455:
      return RefHost::kTransferGamma22;
    case 35714:
      return RefHost::kTransferGamma28;
    case 100000:
      return RefHost::kTransferLinear;
    default:
      return 0;
  }
}

/// gAMA with cHRM; empty where they equal no code points.
ColorDescription FromGammaAndChromaticities(PngHandle& handle) {
  png_fixed_point gamma = 0;
  png_fixed_point c[8] = {};
  if (png_get_gAMA_fixed(handle.Png(), handle.Info(), &gamma) == 0 ||
      png_get_cHRM_fixed(handle.Png(), handle.Info(), &c[0], &c[1], &c[2], &c[3], &c[4], &c[5],
                         &c[6], &c[7]) == 0) {
    return {};
  }
  const auto point = [&c](int i) {
    return orvmediatypes::color::Chromaticity{c[i] / 100000.0, c[i + 1] / 100000.0};
  };
  ColorDescription description = RgbDescription(0, TransferOfGamma(gamma));
  SetPrimaries(description, {point(2), point(4), point(6), point(0)});
  const bool known =
      description.transfer != 0 && description.primaries != RefHost::kUnspecifiedCodePoint;
  return known ? description : ColorDescription{};
}

void RemarkOnIccProfile(PngHandle& handle, std::vector<std::string>& remarks) {
  png_charp name = nullptr;
  int compression = 0;
  png_bytep profile = nullptr;
  png_uint_32 length = 0;
  if (png_get_iCCP(handle.Png(), handle.Info(), &name, &compression, &profile, &length) == 0) {
    return;
  }
  remarks.push_back("ICC profile \"" + std::string(name) + "\" ignored");
}

ColorDescription ReadColors(PngHandle& handle, const PngTags& tags,
                            std::vector<std::string>& remarks) {
  if (tags.cicp && Mapper::Tells((*tags.cicp)[0]) && Mapper::Tells((*tags.cicp)[1])) {
    if (const int matrix = (*tags.cicp)[2]; matrix != 0) {
      remarks.push_back("matrix " + std::to_string(matrix) +
                        " of the cICP chunk ignored: PNG holds RGB");
    }
    return RgbDescription((*tags.cicp)[0], (*tags.cicp)[1]);
  }
  RemarkOnIccProfile(handle, remarks);
  int intent = 0;
  if (png_get_sRGB(handle.Png(), handle.Info(), &intent) != 0)
    return RgbDescription(RefHost::kPrimariesBT709, RefHost::kTransferSRGB);
  return FromGammaAndChromaticities(handle);
}

ColorSpace ReadColorSpace(PngHandle& handle, const PngTags& tags,
                          std::vector<std::string>& remarks) {
  ColorDescription description = ReadColors(handle, tags, remarks);
  description.masteringChromaticities = tags.mastering.masteringChromaticities;
  description.masteringMaxLuminance = tags.mastering.masteringMaxLuminance;
  description.masteringMinLuminance = tags.mastering.masteringMinLuminance;
  return ColorSpace(description);
}

/// Makes libpng deliver blue, green, red and alpha of 8 or 16 bits.
void SetUpTransforms(PngHandle& handle) {
  png_structp png = handle.Png();
  png_set_expand(png);
  png_set_gray_to_rgb(png);
  png_set_bgr(png);
  png_set_add_alpha(png, 0xFFFF, PNG_FILLER_AFTER);
  if constexpr (std::endian::native == std::endian::little) png_set_swap(png);
  png_set_interlace_handling(png);
  png_read_update_info(png, handle.Info());
}

void ReadPixels(const StillSource& source, PngHandle& handle, const FramePixels& pixels) {
  std::vector<png_bytep> rows(static_cast<std::size_t>(pixels.height));
  for (int y = 0; y < pixels.height; ++y) {
    rows[static_cast<std::size_t>(y)] = pixels.Row<png_byte>(y);
  }
  png_bytep* firstRow = rows.data();
  const bool done = handle.Guard([&handle, firstRow] {
    png_read_image(handle.Png(), firstRow);
    png_read_end(handle.Png(), nullptr);
  });
  if (!done) FailDamaged(source, handle.Error());
}

template <class Sample>
PX::VideoFrameRef ExpandNarrowRange(const StillSource& source, const PX::VideoFrameRef& narrow) {
  const FramePixels from = PixelsOf(narrow);
  PX::VideoFrameRef frame = MakeFrame(source, orvmediatypes::kLinearFloatBGRA, from.width,
                                      from.height, narrow->GetColorSpace());
  const FramePixels to = PixelsOf(frame);
  for (int y = 0; y < from.height; ++y) {
    const Sample* codes = from.Row<Sample>(y);
    float* signals = to.Row<float>(y);
    for (std::ptrdiff_t x = 0; x < from.width; ++x) {
      for (int c = 0; c < 3; ++c) {
        signals[4 * x + c] = NarrowRangeSignal(codes[4 * x + c], 8 * sizeof(Sample));
      }
      signals[4 * x + 3] = 1.0F;
    }
  }
  return frame;
}

template <class Sample>
void FinishSamples(const StillSource& source, bool narrowRange, Still& still) {
  constexpr auto kOpaque = static_cast<Sample>(~Sample{0});
  if (MakeOpaque<Sample>(PixelsOf(still.frame), kOpaque)) {
    still.remarks.emplace_back(kAlphaDropped);
  }
  if (narrowRange) still.frame = ExpandNarrowRange<Sample>(source, still.frame);
}

}  // namespace

Still ReadPng(const StillSource& source) {
  const PngFile file = ScanPngFile(source.bytes);
  Cursor cursor{file.pieces};
  PngHandle handle(PngHandle::Use::Read);
  if (!handle.IsUsable()) throw std::bad_alloc();
  if (!handle.Guard([&] { ReadHeader(handle, cursor); })) FailDamaged(source, handle.Error());

  const png_uint_32 width = png_get_image_width(handle.Png(), handle.Info());
  const png_uint_32 height = png_get_image_height(handle.Png(), handle.Info());
  const bool deep = png_get_bit_depth(handle.Png(), handle.Info()) == 16;
  CheckDimensions(source, width, height);
  const double pixelBits = png_get_bit_depth(handle.Png(), handle.Info()) *
                           png_get_channels(handle.Png(), handle.Info());
  CheckHeld(source, std::to_string(width) + "x" + std::to_string(height) + " pixels",
            pixelBits / 8.0 * width * height, kMostDeflated * static_cast<double>(file.pixelBytes));

  Still still;
  const PngTags tags = ReadKeptChunks(handle, still.remarks);
  still.light = tags.light;
  const ColorSpace colorSpace = ReadColorSpace(handle, tags, still.remarks);
  if (!handle.Guard([&] { SetUpTransforms(handle); })) FailDamaged(source, handle.Error());
  still.frame = MakeFrame(source, deep ? RefHost::kBgra16 : RefHost::kBgra8,
                          static_cast<int>(width), static_cast<int>(height), colorSpace);
  ReadPixels(source, handle, PixelsOf(still.frame));

  for (const std::string& name : file.damaged) {
    still.remarks.push_back("PNG chunk " + name + " ignored: it is damaged, its CRC is wrong");
  }
  for (const std::string& warning : handle.Warnings()) {
    still.remarks.push_back("PNG chunk " + warning);
  }
  const bool narrowRange = tags.cicp && (*tags.cicp)[3] == 0;
  if (deep) {
    FinishSamples<std::uint16_t>(source, narrowRange, still);
  } else {
    FinishSamples<std::uint8_t>(source, narrowRange, still);
  }
  return still;
}

}  // namespace Quillon::Cli
