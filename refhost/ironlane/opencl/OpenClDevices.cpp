#include "refhost/ironlane/opencl/OpenClDevices.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace RefHost {

namespace {

/// Some drivers count the terminating null as a character.
std::string Trimmed(std::string text) {
  text.erase(text.find_last_not_of(std::string_view(" \0", 2)) + 1);
  return text;
}

bool HasName(const cl::Device& device) {
  return !Trimmed(device.getInfo<CL_DEVICE_NAME>()).empty();
}

std::string ObstacleOf(const cl::Device& device) {
  if (device.getInfo<CL_DEVICE_AVAILABLE>() == CL_FALSE) return "not available";
  if (device.getInfo<CL_DEVICE_COMPILER_AVAILABLE>() == CL_FALSE) return "no compiler";
  if (device.getInfo<CL_DEVICE_ENDIAN_LITTLE>() == CL_FALSE) return "big-endian";
  if (device.getInfo<CL_DEVICE_DOUBLE_FP_CONFIG>() == 0) return "no double precision";
  return {};
}

}  // namespace

std::vector<cl::Device> FindOpenClDevices() {
  std::vector<cl::Platform> platforms;
  // Fails where there is none.
  if (cl::Platform::get(&platforms) != CL_SUCCESS) return {};
  std::vector<cl::Device> devices;
  for (const cl::Platform& platform : platforms) {
    std::vector<cl::Device> ofPlatform;
    if (platform.getDevices(CL_DEVICE_TYPE_ALL, &ofPlatform) != CL_SUCCESS) continue;
    std::copy_if(ofPlatform.begin(), ofPlatform.end(), std::back_inserter(devices), HasName);
  }
  return devices;
}

DeviceInfo DescribeOpenClDevice(const cl::Device& device, std::int32_t ordinal) {
  constexpr cl_device_fp_config kExact =
      CL_FP_DENORM | CL_FP_INF_NAN | CL_FP_ROUND_TO_NEAREST | CL_FP_CORRECTLY_ROUNDED_DIVIDE_SQRT;
  const cl::Platform platform(device.getInfo<CL_DEVICE_PLATFORM>());
  return {.platformKind = IL::kPlatformOpenCl,
          .ordinal = ordinal,
          .platform = Trimmed(platform.getInfo<CL_PLATFORM_NAME>()),
          .name = Trimmed(device.getInfo<CL_DEVICE_NAME>()),
          .driver = Trimmed(device.getInfo<CL_DRIVER_VERSION>()),
          .memoryBytes = device.getInfo<CL_DEVICE_GLOBAL_MEM_SIZE>(),
          .isExact = (device.getInfo<CL_DEVICE_SINGLE_FP_CONFIG>() & kExact) == kExact,
          .isProcessor = (device.getInfo<CL_DEVICE_TYPE>() & CL_DEVICE_TYPE_CPU) != 0,
          .obstacle = ObstacleOf(device)};
}

}  // namespace RefHost
