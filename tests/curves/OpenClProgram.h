#pragma once

#include <CL/opencl.hpp>
#include <cstddef>
#include <string>

namespace curves {

/// A program in OpenCL C 1.2, compiled for the first device that computes as the curves ask: in
/// double precision, with denormals and correctly rounded division of floats. Warnings are errors.
class OpenClProgram {
 public:
  /// Includes are found from the repository's root. Throws std::runtime_error: without such a
  /// device, naming the package that brings one; where the device's compiler refuses the program,
  /// with what it says.
  explicit OpenClProgram(const std::string& source);

  /// Runs a kernel over `items` items. Sizes are in bytes. Throws std::runtime_error.
  void Run(const std::string& kernel, const void* in, std::size_t inSize, void* out,
           std::size_t outSize, std::size_t items) const;

 private:
  cl::Device device_;
  cl::Context context_;
  cl::Program program_;
};

}  // namespace curves
