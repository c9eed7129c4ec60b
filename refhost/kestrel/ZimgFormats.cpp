#include "refhost/kestrel/ZimgFormats.h"

#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorDescription;

namespace RefHost {

namespace {

// The last values that zimg's enumerations hold.
constexpr std::uint8_t kLastChromaLocation = ZIMG_CHROMA_BOTTOM;
constexpr std::uint8_t kLastPrimaries = ZIMG_PRIMARIES_EBU3213_E;

/// The non-constant-luminance matrices of H.273, table 4. The others need light, not signals.
bool IsKnownMatrix(std::uint8_t matrix) {
  switch (matrix) {
    case ZIMG_MATRIX_BT709:
    case ZIMG_MATRIX_FCC:
    case ZIMG_MATRIX_BT470_BG:
    case ZIMG_MATRIX_ST170_M:
    case ZIMG_MATRIX_ST240_M:
    case ZIMG_MATRIX_YCGCO:
    case ZIMG_MATRIX_BT2020_NCL:
    case ZIMG_MATRIX_CHROMATICITY_DERIVED_NCL:
      return true;
    default:
      return false;
  }
}

}  // namespace

std::optional<zimg_image_format> ZimgFormatOf(const FormatInfo& info,
                                              const ColorDescription& colors, int width,
                                              int height) {
  zimg_image_format format;
  zimg_image_format_default(&format, ZIMG_API_VERSION);
  if (colors.matrix == kMatrixIdentity) {
    if (info.chroma != ChromaFormat::C444) return std::nullopt;
    format.color_family = ZIMG_COLOR_RGB;
  } else {
    if (!IsKnownMatrix(colors.matrix)) return std::nullopt;
    format.color_family = ZIMG_COLOR_YUV;
  }
  if (colors.chromaLocation > kLastChromaLocation) return std::nullopt;
  format.width = static_cast<unsigned>(width);
  format.height = static_cast<unsigned>(height);
  format.subsample_w = static_cast<unsigned>(info.ChromaShiftX());
  format.subsample_h = static_cast<unsigned>(info.ChromaShiftY());
  format.pixel_type = info.bytesPerSample == 1 ? ZIMG_PIXEL_BYTE : ZIMG_PIXEL_WORD;
  format.depth = static_cast<unsigned>(info.bits);
  format.pixel_range = colors.fullRange ? ZIMG_RANGE_FULL : ZIMG_RANGE_LIMITED;
  format.matrix_coefficients = static_cast<zimg_matrix_coefficients_e>(colors.matrix);
  format.chroma_location = static_cast<zimg_chroma_location_e>(colors.chromaLocation);
  if (colors.matrix == ZIMG_MATRIX_CHROMATICITY_DERIVED_NCL) {
    if (colors.primaries > kLastPrimaries) return std::nullopt;
    format.color_primaries = static_cast<zimg_color_primaries_e>(colors.primaries);
  }
  return format;
}

std::array<int, 3> ZimgPlanes(const ColorDescription& colors) {
  if (colors.matrix == kMatrixIdentity) return {1, 2, 0};
  return {0, 1, 2};
}

zimg_image_format FloatRgbLike(const zimg_image_format& format) {
  zimg_image_format rgb;
  zimg_image_format_default(&rgb, ZIMG_API_VERSION);
  rgb.width = format.width;
  rgb.height = format.height;
  rgb.pixel_type = ZIMG_PIXEL_FLOAT;
  rgb.color_family = ZIMG_COLOR_RGB;
  rgb.matrix_coefficients = ZIMG_MATRIX_RGB;
  rgb.color_primaries = format.color_primaries;
  return rgb;
}

}  // namespace RefHost
