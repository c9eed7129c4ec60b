#include "refhost/kestrel/PixelFormats.h"

#include <array>

using orvmediatypes::PixelFormat;

namespace RefHost {

namespace {

/// Bits 19 and 20 of a descriptor.
constexpr std::uint32_t kPlanar = 2U << 19U;
constexpr std::uint32_t kSemiPlanar = 3U << 19U;

/// Depth code, bits 1 to 3 of a descriptor, of a format that is not known.
constexpr std::uint32_t kNoDepth = 7;

constexpr std::array kChromaFormats{ChromaFormat::C420, ChromaFormat::C422, ChromaFormat::C444};
constexpr std::array kDepths{8, 10, 12, 16};

constexpr std::uint32_t FourCC(char a, char b, char c, char d) {
  return static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b) << 8U |
         static_cast<std::uint32_t>(c) << 16U | static_cast<std::uint32_t>(d) << 24U;
}

constexpr std::uint32_t DepthCode(int bits) {
  switch (bits) {
    case 8:
      return 0;
    case 10:
      return 1;
    case 16:
      return 2;
    case 12:
      return 6;
    default:
      return kNoDepth;
  }
}

constexpr PixelFormat YCbCr(char layoutLetter, std::uint32_t layoutBits, ChromaFormat chroma,
                            int bits) {
  const std::uint32_t descriptor = layoutBits | DepthCode(bits) << 1U;
  switch (chroma) {
    case ChromaFormat::C420:
      return {FourCC(layoutLetter, '4', '2', '0'), descriptor};
    case ChromaFormat::C422:
      return {FourCC(layoutLetter, '4', '2', '2'), descriptor};
    case ChromaFormat::C444:
      break;
  }
  return {FourCC(layoutLetter, '4', '4', '4'), descriptor};
}

FormatInfo Interleaved(SampleType sampleType, int bits) {
  return {FrameLayout::InterleavedBGRA, sampleType, bits, bits / 8, ChromaFormat::C444, 1};
}

}  // namespace

PixelFormat PlanarYCbCr(ChromaFormat chroma, int bits) { return YCbCr('P', kPlanar, chroma, bits); }

PixelFormat SemiPlanarYCbCr(ChromaFormat chroma, int bits) {
  return YCbCr('S', kSemiPlanar, chroma, bits);
}

int FormatInfo::SamplesPerPosition(int plane) const {
  switch (layout) {
    case FrameLayout::InterleavedBGRA:
      return 4;
    case FrameLayout::PlanarYCbCr:
      return 1;
    case FrameLayout::SemiPlanarYCbCr:
      break;
  }
  return plane == 0 ? 1 : 2;
}

std::optional<FormatInfo> DescribeFormat(PixelFormat format) {
  if (format == kBgra8) return Interleaved(SampleType::UnsignedInteger, 8);
  if (format == kBgra16) return Interleaved(SampleType::UnsignedInteger, 16);
  if (format == kBgraHalf) return Interleaved(SampleType::Half, 16);
  if (format == kBgraFloat) return Interleaved(SampleType::Float, 32);
  for (const ChromaFormat chroma : kChromaFormats) {
    for (const int bits : kDepths) {
      const int bytes = bits > 8 ? 2 : 1;
      if (format == PlanarYCbCr(chroma, bits)) {
        return FormatInfo{
            FrameLayout::PlanarYCbCr, SampleType::UnsignedInteger, bits, bytes, chroma, 3};
      }
      if (format == SemiPlanarYCbCr(chroma, bits)) {
        return FormatInfo{
            FrameLayout::SemiPlanarYCbCr, SampleType::UnsignedInteger, bits, bytes, chroma, 2};
      }
    }
  }
  return std::nullopt;
}

}  // namespace RefHost
