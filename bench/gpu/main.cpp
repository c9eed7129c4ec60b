// Every kernel of the engine over 4K and 8K frames, float and half, beside a copy of the same bytes
// within the device's memory in the same run; and whole calls, with their working frames.
//
//   quillon-gpu-bench [opencl:N|cuda:N|gpus] [OUTPUT.json]
//
// Without a device, on the one that programs choose; "gpus" is all but processors.

#include <cstdio>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/gpu/CallBench.h"
#include "bench/gpu/KernelBench.h"
#include "refhost/ironlane/Devices.h"
#include "refhost/kestrel/PixelFormats.h"

namespace {

struct Measurements {
  RefHost::DeviceInfo device;
  std::vector<KernelTime> kernels;
  std::vector<CallTime> calls;
};

void Print(const KernelTime& time) {
  std::printf("%-46s %-16s %9.3f %9.3f %7.1f%%\n", time.kernel.c_str(), time.frame.c_str(),
              time.seconds * 1e3, time.copySeconds * 1e3, 100.0 * time.copySeconds / time.seconds);
  std::fflush(stdout);
}

void Print(const CallTime& time) {
  std::printf("%-46s %-16s %9.3f %9.3f %9.4f\n", time.algorithm.c_str(), time.frame.c_str(),
              time.firstSeconds * 1e3, time.seconds * 1e3, time.allocationSeconds * 1e3);
  std::fflush(stdout);
}

std::vector<Shape> Shapes() {
  return {{3840, 2160, RefHost::kBgraFloat},
          {3840, 2160, RefHost::kBgraHalf},
          {7680, 4320, RefHost::kBgraFloat},
          {7680, 4320, RefHost::kBgraHalf}};
}

Measurements MeasureAll(const DeviceRef& device) {
  Measurements all{device->Info(), {}, {}};
  std::printf("%s: %s, %s, driver %s\n",
              RefHost::DeviceName(all.device.platformKind, all.device.ordinal).c_str(),
              all.device.name.c_str(), all.device.platform.c_str(), all.device.driver.c_str());
  std::printf("%-46s %-16s %9s %9s %8s\n", "kernel", "frame", "ms", "copy ms", "of copy");
  for (const Shape& shape : Shapes()) {
    for (const KernelTime& time : TimeKernels(device, shape)) {
      all.kernels.push_back(time);
      Print(time);
    }
  }
  std::printf("%-46s %-16s %9s %9s %9s\n", "whole call", "frame", "first ms", "later ms",
              "alloc ms");
  for (const Shape& shape : Shapes()) {
    for (const CallTime& time : TimeCalls(device, shape)) {
      all.calls.push_back(time);
      Print(time);
    }
  }
  return all;
}

template <class Rows, class Write>
void WriteRows(std::ostream& out, const Rows& rows, const Write& write) {
  for (const auto& row : rows) {
    out << (&row == &rows.front() ? "\n    {" : ",\n    {");
    write(row);
    out << '}';
  }
}

void WriteJson(std::ostream& out, const std::vector<Measurements>& devices) {
  out << '[';
  for (const Measurements& m : devices) {
    out << (&m == &devices.front() ? "" : ",") << "\n{\"device\": \"" << m.device.name
        << "\", \"driver\": \"" << m.device.driver << "\",\n  \"kernels\": [";
    WriteRows(out, m.kernels, [&](const KernelTime& time) {
      out << "\"kernel\": \"" << time.kernel << "\", \"frame\": \"" << time.frame
          << "\", \"seconds\": " << time.seconds << ", \"copy_seconds\": " << time.copySeconds;
    });
    out << "],\n  \"calls\": [";
    WriteRows(out, m.calls, [&](const CallTime& time) {
      out << "\"algorithm\": \"" << time.algorithm << "\", \"frame\": \"" << time.frame
          << "\", \"first_seconds\": " << time.firstSeconds << ", \"seconds\": " << time.seconds
          << ", \"allocation_seconds\": " << time.allocationSeconds;
    });
    out << "]}";
  }
  out << "\n]\n";
}

/// Those of this name; without one, what programs choose.
std::vector<DeviceRef> Choose(const std::string& name) {
  std::vector<DeviceRef> devices;
  if (name.empty()) devices.push_back(RefHost::OpenFirstDevice());
  for (const RefHost::DeviceInfo& info : RefHost::ListDevices()) {
    const bool isOfAll = name == "gpus" && !info.isProcessor && info.obstacle.empty();
    if (!isOfAll && name != RefHost::DeviceName(info.platformKind, info.ordinal)) continue;
    devices.push_back(RefHost::OpenDevice(info.platformKind, info.ordinal));
  }
  std::erase(devices, nullptr);
  if (!devices.empty()) return devices;
  if (name.empty() || name == "gpus") throw std::runtime_error("there is no GPU with kernels");
  throw std::runtime_error("there is no device " + name + " that can be used");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    std::vector<Measurements> measurements;
    for (const DeviceRef& device : Choose(argc > 1 ? argv[1] : "")) {
      measurements.push_back(MeasureAll(device));
    }
    if (argc <= 2) return 0;
    std::ofstream out(argv[2]);
    WriteJson(out, measurements);
    if (!out.flush()) throw std::runtime_error(std::string(argv[2]) + " cannot be written");
  } catch (const std::exception& error) {
    std::cerr << "quillon-gpu-bench: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
