#pragma once

#include <cstddef>
#include <initializer_list>
#include <string_view>

#include "refhost/kestrel/GPUFrame.h"

namespace RefHost {

/// A value argument of a kernel, passed by its bytes.
struct KernelValue {
  const void* data;
  std::size_t bytes;
  std::size_t alignment;
};

/// Gives a kernel of the host's own to the device of the first frame, once for each of its pixels:
/// first the frames, then the values. What it reads is free to go when this returns. 0 or a
/// negative code.
int RunPixelKernel(std::string_view module, std::string_view kernel,
                   std::initializer_list<GPUFrameView> frames,
                   std::initializer_list<KernelValue> values);

}  // namespace RefHost
