#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "refhost/ironlane/GpuDevice.h"

/// Where pictures are mapped, as `--device` says.
struct DeviceChoice {
  enum class Kind { Cpu, AnyGpu, OpenCl, Cuda };
  Kind kind = Kind::Cpu;
  std::int32_t ordinal = 0;  ///< of OpenCl and Cuda
};

/// What `--device` takes.
inline constexpr const char* kDeviceSyntax = "cpu|gpu|opencl:N|cuda:N";

/// "cpu", "gpu", "opencl:N" or "cuda:N". Throws CLI::ValidationError for anything else.
DeviceChoice ParseDevice(const std::string& text);

/// The name by which `--device` knows a device.
std::string DeviceName(const IL::DeviceInfo& info);

/// The device, made ready; null for the processor. Throws CommandError when there is none, never
/// taking another in its place.
std::shared_ptr<IL::GpuDevice> OpenChosenDevice(const DeviceChoice& choice);
