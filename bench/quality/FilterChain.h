#pragma once

#include <string>
#include <vector>

#include "bench/FilterGraph.h"
#include "bench/quality/Light.h"

extern "C" {
#include <libavutil/buffer.h>
}

namespace Quality {

struct FreeBuffer {
  void operator()(AVBufferRef* buffer) const { av_buffer_unref(&buffer); }
};
using BufferPtr = std::unique_ptr<AVBufferRef, FreeBuffer>;

/// Sends pixels of BT.2100 PQ through filters of FFmpeg as a planar float picture, full range, with
/// the peak as its MaxCLL and as the maximum of its mastering display. The filters end in gbrpf32.
/// The result is clamped to 0 to 1. `device`: for filters that want one, or null. Throws
/// std::runtime_error.
std::vector<Signal> MapByFilters(const std::string& filters, const std::vector<Signal>& pixels,
                                 double peakNits, AVBufferRef* device);

}  // namespace Quality
