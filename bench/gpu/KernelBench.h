#pragma once

#include <string>
#include <vector>

#include "bench/gpu/Pictures.h"

/// A kernel over frames that no kernel has touched, and copies of the same bytes within the
/// device's memory, in turns. Medians.
struct KernelTime {
  std::string kernel;
  std::string frame;
  double seconds;
  double copySeconds;
};

/// Of every kernel of the engine. Throws where a kernel leaves the picture as it was.
std::vector<KernelTime> TimeKernels(const DeviceRef& device, const Shape& shape);
