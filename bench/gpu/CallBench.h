#pragma once

#include <string>
#include <vector>

#include "bench/gpu/Pictures.h"

/// A whole call from one frame on the device to another, PQ with 1000 nits to BT.709: the working
/// frame is made, filled, mapped, copied and released, and the call waited for. Medians.
struct CallTime {
  std::string algorithm;
  std::string frame;
  double firstSeconds;       ///< kernels loaded, memory taken from the device
  double seconds;            ///< each later one
  double allocationSeconds;  ///< of these, making and releasing the working frame
};

/// Of every tone map of the engine, with gamut compression by Reinhard.
std::vector<CallTime> TimeCalls(const DeviceRef& device, const Shape& shape);
