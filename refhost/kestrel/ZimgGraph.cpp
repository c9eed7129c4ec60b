#include "refhost/kestrel/ZimgGraph.h"

#include <array>
#include <stdexcept>
#include <string>
#include <utility>

namespace RefHost {

ZimgGraph::ZimgGraph(Handle graph, std::size_t scratchBytes)
    : graph_(std::move(graph)), scratchBytes_(scratchBytes) {}

std::unique_ptr<const ZimgGraph> ZimgGraph::Build(const zimg_image_format& source,
                                                  const zimg_image_format& destination) {
  zimg_graph_builder_params params;
  zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
  params.resample_filter_uv = ZIMG_RESIZE_BILINEAR;
  params.dither_type = ZIMG_DITHER_NONE;
  Handle graph(zimg_filter_graph_build(&source, &destination, &params));
  std::size_t scratchBytes = 0;
  if (graph == nullptr || zimg_filter_graph_get_tmp_size(graph.get(), &scratchBytes) != 0) {
    return nullptr;
  }
  return std::unique_ptr<const ZimgGraph>(new ZimgGraph(std::move(graph), scratchBytes));
}

void ZimgGraph::Process(const PlanarBuffer& source, const PlanarBuffer& destination) const {
  const orvcore::allocator::RecycledMemory scratch(scratchBytes_);
  const zimg_image_buffer_const input = source.Input();
  const zimg_image_buffer output = destination.Output();
  if (zimg_filter_graph_process(graph_.get(), &input, &output, scratch.Data(), nullptr, nullptr,
                                nullptr, nullptr) != ZIMG_ERROR_SUCCESS) {
    std::array<char, 256> text{};
    zimg_get_last_error(text.data(), text.size());
    throw std::runtime_error(std::string("zimg: ") + text.data());
  }
}

}  // namespace RefHost
