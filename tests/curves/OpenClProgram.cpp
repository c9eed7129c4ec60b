#include "tests/curves/OpenClProgram.h"

#include <stdexcept>
#include <vector>

namespace curves {

namespace {

bool ComputesExactly(const cl::Device& device) {
  constexpr cl_device_fp_config kFloat =
      CL_FP_DENORM | CL_FP_INF_NAN | CL_FP_ROUND_TO_NEAREST | CL_FP_CORRECTLY_ROUNDED_DIVIDE_SQRT;
  return device.getInfo<CL_DEVICE_AVAILABLE>() && device.getInfo<CL_DEVICE_COMPILER_AVAILABLE>() &&
         device.getInfo<CL_DEVICE_DOUBLE_FP_CONFIG>() != 0 &&
         (device.getInfo<CL_DEVICE_SINGLE_FP_CONFIG>() & kFloat) == kFloat;
}

cl::Device FindDevice() {
  std::vector<cl::Platform> platforms;
  // Fails where there is none.
  if (cl::Platform::get(&platforms) != CL_SUCCESS) platforms.clear();
  for (const cl::Platform& platform : platforms) {
    std::vector<cl::Device> devices;
    if (platform.getDevices(CL_DEVICE_TYPE_ALL, &devices) != CL_SUCCESS) continue;
    for (const cl::Device& device : devices) {
      if (ComputesExactly(device)) return device;
    }
  }
  throw std::runtime_error(
      "no OpenCL device with double precision, denormals and correctly rounded division; the "
      "Debian package pocl-opencl-icd brings one");
}

void Require(cl_int code, const std::string& what) {
  if (code != CL_SUCCESS) {
    throw std::runtime_error("OpenCL cannot " + what + ": error " + std::to_string(code));
  }
}

}  // namespace

OpenClProgram::OpenClProgram(const std::string& source)
    : device_(FindDevice()), context_(device_), program_(context_, source) {
  const int code = program_.build(device_,
                                  "-cl-std=CL1.2 -cl-fp32-correctly-rounded-divide-sqrt -Werror "
                                  "-I" QUILLON_SOURCE_DIR);
  if (code != CL_SUCCESS) {
    throw std::runtime_error("not OpenCL C 1.2:\n" + source +
                             program_.getBuildInfo<CL_PROGRAM_BUILD_LOG>(device_));
  }
}

void OpenClProgram::Run(const std::string& kernel, const void* in, std::size_t inSize, void* out,
                        std::size_t outSize, std::size_t items) const {
  cl_int code = CL_SUCCESS;
  cl::Kernel run(program_, kernel.c_str(), &code);
  Require(code, "find kernel " + kernel);
  const cl::CommandQueue queue(context_, device_, cl::QueueProperties::None, &code);
  Require(code, "make a queue");
  const cl::Buffer inBuffer(context_, CL_MEM_READ_ONLY, inSize, nullptr, &code);
  Require(code, "make a buffer");
  const cl::Buffer outBuffer(context_, CL_MEM_WRITE_ONLY, outSize, nullptr, &code);
  Require(code, "make a buffer");
  Require(queue.enqueueWriteBuffer(inBuffer, CL_TRUE, 0, inSize, in), "write a buffer");
  Require(run.setArg(0, inBuffer), "set an argument");
  Require(run.setArg(1, outBuffer), "set an argument");
  Require(queue.enqueueNDRangeKernel(run, cl::NullRange, cl::NDRange(items)), "run " + kernel);
  Require(queue.enqueueReadBuffer(outBuffer, CL_TRUE, 0, outSize, out), "read a buffer");
}

}  // namespace curves
