#include "refhost/ironlane/opencl/OpenClStatus.h"

#include <string>

#include "refhost/ResultCodes.h"
#include "refhost/ironlane/Trace.h"

namespace RefHost {

int ResultOf(cl_int status, std::string_view what) {
  if (status == CL_SUCCESS) return 0;
  // What some drivers say too of a kernel that failed before.
  const std::string reason = status == CL_OUT_OF_RESOURCES
                                 ? "the device is out of resources, or a kernel failed on it"
                                 : std::to_string(status);
  TraceMessage("OpenCL : " + std::string(what) + " failed : " + reason);
  switch (status) {
    case CL_MEM_OBJECT_ALLOCATION_FAILURE:
    case CL_INVALID_BUFFER_SIZE:
    case CL_OUT_OF_RESOURCES:
    case CL_OUT_OF_HOST_MEMORY:
      return kOutOfDeviceMemory;
    case CL_INVALID_ARG_INDEX:
    case CL_INVALID_ARG_SIZE:
    case CL_INVALID_ARG_VALUE:
    case CL_INVALID_KERNEL_ARGS:
    case CL_INVALID_MEM_OBJECT:
    case CL_INVALID_VALUE:
    case CL_INVALID_WORK_GROUP_SIZE:
    case CL_INVALID_WORK_ITEM_SIZE:
      return kInvalidLaunch;
    default:
      return kDeviceFailed;
  }
}

}  // namespace RefHost
