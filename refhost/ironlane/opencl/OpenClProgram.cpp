#include "refhost/ironlane/opencl/OpenClProgram.h"

#include <cstring>
#include <string>
#include <vector>

#include "refhost/ironlane/Trace.h"

namespace RefHost {

namespace {

std::string OptionsFor(const DeviceInfo& info) {
  std::string options = "-cl-std=CL1.2";
  // Refused by devices that cannot.
  if (info.isExact) options += " -cl-fp32-correctly-rounded-divide-sqrt";
  return options;
}

std::optional<cl::Program> FromCache(const cl::Context& context, const cl::Device& device,
                                     const std::string& options, const BinaryCache& cache,
                                     const std::string& key) {
  const auto binary = cache.Find(key);
  if (!binary.has_value()) return std::nullopt;
  std::vector<unsigned char> bytes(binary->size());
  std::memcpy(bytes.data(), binary->data(), bytes.size());
  std::vector<cl_int> statuses;
  cl_int status = CL_SUCCESS;
  const cl::Program program(context, {device}, {bytes}, &statuses, &status);
  if (status == CL_SUCCESS && program.build(device, options.c_str()) == CL_SUCCESS) return program;
  cache.Forget(key);
  return std::nullopt;
}

void KeepBinary(const cl::Program& program, const BinaryCache& cache, const std::string& key) {
  cl_int status = CL_SUCCESS;
  const auto binaries = program.getInfo<CL_PROGRAM_BINARIES>(&status);
  if (status != CL_SUCCESS || binaries.size() != 1 || binaries[0].empty()) return;
  BinaryCache::Binary bytes(binaries[0].size());
  std::memcpy(bytes.data(), binaries[0].data(), bytes.size());
  cache.Store(key, bytes);
}

}  // namespace

std::optional<cl::Program> BuildOpenClProgram(const cl::Context& context, const cl::Device& device,
                                              const DeviceInfo& info,
                                              const kernels::KernelModule& module,
                                              const BinaryCache& cache) {
  const std::string source(module.openCl);
  const std::string options = OptionsFor(info);
  const std::string key = "OpenCL\n" + info.platform + '\n' + info.name + '\n' + info.driver +
                          '\n' + options + '\n' + source;
  if (auto program = FromCache(context, device, options, cache, key)) return program;

  const cl::Program program(context, source);
  if (program.build(device, options.c_str()) != CL_SUCCESS) {
    TraceMessage("OpenCL : module " + std::string(module.name) + " does not build on " + info.name +
                 " : " + program.getBuildInfo<CL_PROGRAM_BUILD_LOG>(device));
    return std::nullopt;
  }
  KeepBinary(program, cache, key);
  return program;
}

}  // namespace RefHost
