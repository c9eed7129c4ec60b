// In the place of the back end, where there is no OpenCL to build it with.

#include <string>

#include "refhost/ironlane/Trace.h"
#include "refhost/ironlane/opencl/OpenClDevice.h"

namespace RefHost {

std::vector<DeviceInfo> ListOpenClDevices() { return {}; }

std::shared_ptr<GPUDevice> OpenOpenClDevice(std::int32_t ordinal) {
  TraceMessage("OpenCL : built without, there is no device " + std::to_string(ordinal));
  return nullptr;
}

}  // namespace RefHost
