#include <cstddef>
#include <memory>
#include <new>
#include <stdexcept>

#include <zimg.h>

#include "tests/refhost/chromant/Witnesses.h"

namespace {

constexpr std::size_t kAlignment = 64;

struct FreeGraph {
  void operator()(zimg_filter_graph* graph) const { zimg_filter_graph_free(graph); }
};
using Graph = std::unique_ptr<zimg_filter_graph, FreeGraph>;

/// Memory aligned as zimg wants it.
class AlignedBuffer {
 public:
  explicit AlignedBuffer(std::size_t bytes)
      : data_(static_cast<std::byte*>(::operator new(bytes, std::align_val_t(kAlignment)))) {}

  template <class Component>
  Component* Plane(std::size_t index, std::size_t stride) const {
    return reinterpret_cast<Component*>(data_.get() + index * stride);
  }

 private:
  struct Free {
    void operator()(std::byte* data) const {
      ::operator delete(data, std::align_val_t(kAlignment));
    }
  };
  std::unique_ptr<std::byte, Free> data_;
};

template <class Component>
constexpr zimg_pixel_type_e kPixelType = ZIMG_PIXEL_FLOAT;
template <>
constexpr zimg_pixel_type_e kPixelType<std::uint8_t> = ZIMG_PIXEL_BYTE;
template <>
constexpr zimg_pixel_type_e kPixelType<std::uint16_t> = ZIMG_PIXEL_WORD;

template <class Component>
zimg_image_format Format(Cicp cicp, std::size_t width) {
  zimg_image_format format;
  zimg_image_format_default(&format, ZIMG_API_VERSION);
  format.width = static_cast<unsigned>(width);
  format.height = 1;
  format.pixel_type = kPixelType<Component>;
  format.color_family = ZIMG_COLOR_RGB;
  format.matrix_coefficients = ZIMG_MATRIX_RGB;
  format.transfer_characteristics = static_cast<zimg_transfer_characteristics_e>(cicp.transfer);
  format.color_primaries = static_cast<zimg_color_primaries_e>(cicp.primaries);
  format.depth = 8 * sizeof(Component);
  format.pixel_range = ZIMG_RANGE_FULL;
  return format;
}

[[noreturn]] void Fail() {
  char message[256];
  zimg_get_last_error(message, sizeof(message));
  throw std::runtime_error(message);
}

template <class Component>
Graph BuildGraph(Cicp from, Cicp to, std::size_t width, double whiteNits) {
  zimg_graph_builder_params params;
  zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
  params.nominal_peak_luminance = whiteNits;
  params.cpu_type = ZIMG_CPU_NONE;
  const zimg_image_format source = Format<Component>(from, width);
  const zimg_image_format destination = Format<Component>(to, width);
  Graph graph(zimg_filter_graph_build(&source, &destination, &params));
  if (graph == nullptr) Fail();
  return graph;
}

}  // namespace

template <class Component>
std::vector<std::array<Component, 3>> ConvertedByZimg(
    const std::vector<std::array<Component, 3>>& pixels, Cicp from, Cicp to, double whiteNits) {
  const Graph graph = BuildGraph<Component>(from, to, pixels.size(), whiteNits);
  std::size_t scratchBytes = 0;
  if (zimg_filter_graph_get_tmp_size(graph.get(), &scratchBytes) != 0) Fail();
  const AlignedBuffer scratch(scratchBytes + kAlignment);

  const std::size_t stride =
      (pixels.size() * sizeof(Component) + kAlignment - 1) / kAlignment * kAlignment;
  const AlignedBuffer sourcePlanes(3 * stride);
  const AlignedBuffer destinationPlanes(3 * stride);
  zimg_image_buffer_const source{};
  zimg_image_buffer destination{};
  source.version = destination.version = ZIMG_API_VERSION;
  for (std::size_t c = 0; c < 3; ++c) {
    const auto step = static_cast<std::ptrdiff_t>(stride);
    auto* plane = sourcePlanes.Plane<Component>(c, stride);
    for (std::size_t i = 0; i < pixels.size(); ++i) plane[i] = pixels[i][c];
    source.plane[c] = {plane, step, ZIMG_BUFFER_MAX};
    destination.plane[c] = {destinationPlanes.Plane<Component>(c, stride), step, ZIMG_BUFFER_MAX};
  }
  if (zimg_filter_graph_process(graph.get(), &source, &destination, scratch.Plane<std::byte>(0, 0),
                                nullptr, nullptr, nullptr, nullptr) != 0) {
    Fail();
  }

  std::vector<std::array<Component, 3>> result(pixels.size());
  for (std::size_t c = 0; c < 3; ++c) {
    const auto* plane = destinationPlanes.Plane<Component>(c, stride);
    for (std::size_t i = 0; i < pixels.size(); ++i) result[i][c] = plane[i];
  }
  return result;
}

template std::vector<std::array<float, 3>> ConvertedByZimg(const std::vector<std::array<float, 3>>&,
                                                           Cicp, Cicp, double);
template std::vector<std::array<std::uint8_t, 3>> ConvertedByZimg(
    const std::vector<std::array<std::uint8_t, 3>>&, Cicp, Cicp, double);
template std::vector<std::array<std::uint16_t, 3>> ConvertedByZimg(
    const std::vector<std::array<std::uint16_t, 3>>&, Cicp, Cicp, double);
