#include "refhost/kestrel/PlanarBuffer.h"

namespace RefHost {

namespace {

constexpr std::size_t kAlignment = 64;

std::size_t SampleBytes(zimg_pixel_type_e type) {
  switch (type) {
    case ZIMG_PIXEL_BYTE:
      return 1;
    case ZIMG_PIXEL_FLOAT:
      return 4;
    default:
      return 2;
  }
}

}  // namespace

PlanarBuffer::PlanarBuffer(const zimg_image_format& format)
    : format_(format),
      offsets_{0, PlaneBytes(0), PlaneBytes(0) + PlaneBytes(1)},
      memory_(offsets_[2] + PlaneBytes(2)) {}

int PlanarBuffer::Width(int plane) const {
  return static_cast<int>(plane == 0 ? format_.width : format_.width >> format_.subsample_w);
}

int PlanarBuffer::Height(int plane) const {
  return static_cast<int>(plane == 0 ? format_.height : format_.height >> format_.subsample_h);
}

std::size_t PlanarBuffer::RowBytes(int plane) const {
  const std::size_t bytes =
      static_cast<std::size_t>(Width(plane)) * SampleBytes(format_.pixel_type);
  return (bytes + kAlignment - 1) / kAlignment * kAlignment;
}

std::size_t PlanarBuffer::PlaneBytes(int plane) const {
  return RowBytes(plane) * static_cast<std::size_t>(Height(plane));
}

zimg_image_buffer_const PlanarBuffer::Input() const {
  zimg_image_buffer_const buffer{};
  buffer.version = ZIMG_API_VERSION;
  for (int plane = 0; plane < 3; ++plane) {
    buffer.plane[plane] = {Row<std::byte>(plane, 0), static_cast<std::ptrdiff_t>(RowBytes(plane)),
                           ZIMG_BUFFER_MAX};
  }
  return buffer;
}

zimg_image_buffer PlanarBuffer::Output() const {
  zimg_image_buffer buffer{};
  buffer.version = ZIMG_API_VERSION;
  for (int plane = 0; plane < 3; ++plane) {
    buffer.plane[plane] = {Row<std::byte>(plane, 0), static_cast<std::ptrdiff_t>(RowBytes(plane)),
                           ZIMG_BUFFER_MAX};
  }
  return buffer;
}

}  // namespace RefHost
