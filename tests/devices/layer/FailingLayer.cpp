// A layer between OpenCL's loader and its drivers that makes a device fail in mid-run: from the
// n-th call of one function on, every call that gives work to the device fails, as when it is lost.
// The loader takes it from OPENCL_LAYERS; QUILLON_FAIL says where it begins:
// "clEnqueueNDRangeKernel 2". Work-groups that are not whole fail too, as they do before
// OpenCL 2.0.

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <string_view>

#include <CL/cl_layer.h>

namespace {

struct Plan {
  std::string function;
  int nth = 1;
};

const Plan& ThePlan() {
  static const Plan plan = [] {
    Plan made;
    const char* text = std::getenv("QUILLON_FAIL");
    std::istringstream(text == nullptr ? "" : text) >> made.function >> made.nth;
    return made;
  }();
  return plan;
}

/// Whether the device is lost by the time of this call.
bool IsLost(std::string_view function) {
  static std::atomic<int> calls{0};
  static std::atomic<bool> lost{false};
  if (function == ThePlan().function && ++calls >= ThePlan().nth) lost = true;
  return lost;
}

cl_icd_dispatch target;

cl_int CL_API_CALL EnqueueKernel(cl_command_queue queue, cl_kernel kernel, cl_uint dimensions,
                                 const size_t* offset, const size_t* global, const size_t* local,
                                 cl_uint eventCount, const cl_event* events, cl_event* event) {
  if (IsLost("clEnqueueNDRangeKernel")) return CL_DEVICE_NOT_AVAILABLE;
  for (cl_uint i = 0; local != nullptr && i < dimensions; ++i) {
    if (global[i] % local[i] != 0) return CL_INVALID_WORK_GROUP_SIZE;
  }
  return target.clEnqueueNDRangeKernel(queue, kernel, dimensions, offset, global, local, eventCount,
                                       events, event);
}

cl_int CL_API_CALL EnqueueWrite(cl_command_queue queue, cl_mem buffer, cl_bool blocking,
                                size_t offset, size_t size, const void* from, cl_uint eventCount,
                                const cl_event* events, cl_event* event) {
  if (IsLost("clEnqueueWriteBuffer")) return CL_DEVICE_NOT_AVAILABLE;
  return target.clEnqueueWriteBuffer(queue, buffer, blocking, offset, size, from, eventCount,
                                     events, event);
}

cl_int CL_API_CALL EnqueueRead(cl_command_queue queue, cl_mem buffer, cl_bool blocking,
                               size_t offset, size_t size, void* to, cl_uint eventCount,
                               const cl_event* events, cl_event* event) {
  if (IsLost("clEnqueueReadBuffer")) return CL_DEVICE_NOT_AVAILABLE;
  return target.clEnqueueReadBuffer(queue, buffer, blocking, offset, size, to, eventCount, events,
                                    event);
}

cl_int CL_API_CALL Finish(cl_command_queue queue) {
  // The real device has to be done before anything is released.
  const cl_int status = target.clFinish(queue);
  return IsLost("clFinish") ? CL_DEVICE_NOT_AVAILABLE : status;
}

cl_mem CL_API_CALL CreateBuffer(cl_context context, cl_mem_flags flags, size_t size, void* host,
                                cl_int* status) {
  if (IsLost("clCreateBuffer")) {
    if (status != nullptr) *status = CL_MEM_OBJECT_ALLOCATION_FAILURE;
    return nullptr;
  }
  return target.clCreateBuffer(context, flags, size, host, status);
}

cl_int CL_API_CALL BuildProgram(cl_program program, cl_uint count, const cl_device_id* devices,
                                const char* options, void(CL_CALLBACK* notify)(cl_program, void*),
                                void* data) {
  if (IsLost("clBuildProgram")) return CL_BUILD_PROGRAM_FAILURE;
  return target.clBuildProgram(program, count, devices, options, notify, data);
}

}  // namespace

extern "C" {

cl_int CL_API_CALL clGetLayerInfo(cl_layer_info name, size_t size, void* value, size_t* written) {
  const cl_layer_api_version version = CL_LAYER_API_VERSION_100;
  if (name != CL_LAYER_API_VERSION) return CL_INVALID_VALUE;
  if (value != nullptr && size < sizeof(version)) return CL_INVALID_VALUE;
  if (value != nullptr) std::memcpy(value, &version, sizeof(version));
  if (written != nullptr) *written = sizeof(version);
  return CL_SUCCESS;
}

cl_int CL_API_CALL clInitLayer(cl_uint entries, const cl_icd_dispatch* below, cl_uint* entriesOut,
                               const cl_icd_dispatch** layerOut) {
  static cl_icd_dispatch layer;
  if (below == nullptr || entriesOut == nullptr || layerOut == nullptr ||
      entries < sizeof(layer) / sizeof(void*)) {
    return CL_INVALID_VALUE;
  }
  target = *below;
  layer = *below;
  layer.clEnqueueNDRangeKernel = EnqueueKernel;
  layer.clEnqueueWriteBuffer = EnqueueWrite;
  layer.clEnqueueReadBuffer = EnqueueRead;
  layer.clFinish = Finish;
  layer.clCreateBuffer = CreateBuffer;
  layer.clBuildProgram = BuildProgram;
  *entriesOut = sizeof(layer) / sizeof(void*);
  *layerOut = &layer;
  return CL_SUCCESS;
}

}  // extern "C"
