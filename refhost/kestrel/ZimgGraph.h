#pragma once

#include <memory>

#include <zimg.h>

#include "refhost/kestrel/PlanarBuffer.h"

namespace RefHost {

/// A conversion by zimg. Chroma is resampled linearly, integers are rounded to nearest.
class ZimgGraph {
 public:
  /// Null when zimg has no such conversion.
  static std::unique_ptr<const ZimgGraph> Build(const zimg_image_format& source,
                                                const zimg_image_format& destination);

  /// Any number of threads. Throws std::runtime_error when zimg fails.
  void Process(const PlanarBuffer& source, const PlanarBuffer& destination) const;

 private:
  struct Free {
    void operator()(zimg_filter_graph* graph) const { zimg_filter_graph_free(graph); }
  };
  using Handle = std::unique_ptr<zimg_filter_graph, Free>;

  ZimgGraph(Handle graph, std::size_t scratchBytes);

  Handle graph_;
  std::size_t scratchBytes_;
};

}  // namespace RefHost
