// Every kernel of the engine over 4K and 8K frames, float and half, beside a copy within the
// device's memory in the same run: bytes read and written per second.
//
//   quillon-gpu-bench [opencl:N|cuda:N] [OUTPUT.json]

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/KernelSignatures.h"
#include "bench/Timing.h"
#include "gpu/KernelTarget.h"
#include "host/KS/CreateFrames.h"
#include "host/KS/FrameManipulators.h"
#include "refhost/ironlane/Devices.h"
#include "refhost/kestrel/FrameView.h"
#include "refhost/kestrel/GpuFrame.h"
#include "refhost/kestrel/PixelFormats.h"

namespace {

using Device = std::shared_ptr<IL::GpuDevice>;

struct Size {
  int width;
  int height;
};

struct Measurement {
  std::string kernel;
  std::string frame;
  double bytesPerSecond;
  double copyBytesPerSecond;
};

orvmediatypes::color::ColorSpace LinearBt2020() {
  orvmediatypes::color::ColorDescription description;
  description.primaries = 9;
  description.transfer = 8;
  return orvmediatypes::color::ColorSpace(description);
}

/// Light from 0 to 5, above the knee in part of the frame.
void FillWithRamps(const PX::VideoFrameRef& frame) {
  KS::FrameView view;
  Check(KS::ViewFrame(frame, view), "viewing a frame");
  for (int row = 0; row < view.height; ++row) {
    auto* pixel = reinterpret_cast<float*>(view.Row(0, row));
    for (int column = 0; column < view.width; ++column, pixel += 4) {
      const float across = 5.0F * static_cast<float>(column) / static_cast<float>(view.width);
      const float down = static_cast<float>(row) / static_cast<float>(view.height);
      pixel[0] = across * (1.0F - down);
      pixel[1] = across;
      pixel[2] = across * down;
      pixel[3] = 1.0F;
    }
  }
}

PX::VideoFrameRef MakeFrame(const Device& device, orvmediatypes::PixelFormat format, Size size) {
  PX::VideoFrameRef picture;
  PX::VideoFrameRef frame;
  Check(KS::CreateVideoFrame(picture, KS::kBgraFloat, size.width, size.height, {}, LinearBt2020(),
                             false, false),
        "making a frame");
  FillWithRamps(picture);
  Check(KS::CreateGPUVideoFrame(frame, device, format, size.width, size.height, {}, {}, {},
                                LinearBt2020(), 0, 0, 0, nullptr, {}, false),
        "making a frame on the device");
  Check(KS::GPUFrameManipulators::CopyFrame(picture, frame, 4, {}), "an upload");
  return frame;
}

/// Support parameters such as a picture of 1000 nits gives for a display of 203.
Quillon::SupportVector ParamsFor(Quillon::KernelId kernel) {
  using enum Quillon::KernelId;
  switch (kernel) {
    case GamutCompressionReinhard:
      return {1.3F};
    case GamutCompressionDesaturation:
      return {0.2126F, 0.7152F, 0.0722F};
    case HuePreservationDesaturation:
      return {4.926F, 0.5F, 1.0F};
    case ITU2446A:
      return {13.26171F, 7.098651F, 0.396F, 1.0F};
    case CARToneCurve:
      return {0.5F, 1.4F, 0.7F, 1.0F, 0.2126F, 0.7152F, 0.0722F};
    default:
      return {0.0F,    0.751827F, 0.0F, 0.5806889F, 203.0F,  0.751827F, 0.0F,
              0.7724F, 0.6586F,   1.9F, 0.2126F,    0.7152F, 0.0722F};
  }
}

/// Seconds of `count` runs given to the device one after another.
double SecondsOnDevice(const Device& device, int count, const std::function<int()>& run) {
  Check(device->Finish(), "the device");
  return SecondsOf([&] {
    for (int i = 0; i < count; ++i) Check(run(), "a launch");
    Check(device->Finish(), "the device");
  });
}

/// Kernel and copy in turns, so that both meet the same clocks.
Measurement Measure(const Device& device, Quillon::KernelId kernel, const PX::VideoFrameRef& frame,
                    const PX::VideoFrameRef& other, const std::string& frameName) {
  KS::GpuFrameView view;
  KS::GpuFrameView target;
  Check(KS::ViewGpuFrame(frame, view), "viewing a frame");
  Check(KS::ViewGpuFrame(other, target), "viewing a frame");
  Quillon::KernelTarget kernelTarget;
  Quillon::PreparedKernel prepared;
  Check(Quillon::MakeKernelTarget(frame, device, kernelTarget), "describing a frame");
  const orvmediatypes::color::ToneMapControls controls{.peak = 4.926F, .colorPreservation = 0.5F};
  Check(Quillon::PrepareKernel(kernelTarget, kernel, ParamsFor(kernel), controls, prepared),
        "loading a kernel");
  const auto run = [&] { return Quillon::RunKernel(kernelTarget, prepared); };
  const auto copy = [&] { return device->Copy(view.pixels, target.pixels, view.Bytes()); };

  // As many at a time as take about a twentieth of a second.
  SecondsOnDevice(device, 1, run);
  const double once = SecondsOnDevice(device, 1, run);
  const int count = std::clamp(static_cast<int>(0.05 / once), 1, 200);
  std::vector<double> kernelSeconds;
  std::vector<double> copySeconds;
  const int rounds = std::clamp(static_cast<int>(1.0 / once), 1, 7);
  for (int round = 0; round < rounds; ++round) {
    copySeconds.push_back(SecondsOnDevice(device, count, copy) / count);
    kernelSeconds.push_back(SecondsOnDevice(device, count, run) / count);
  }
  const double bytes = 2.0 * static_cast<double>(view.Bytes());
  return {std::string(Quillon::SignatureOf(kernel).name), frameName, bytes / Median(kernelSeconds),
          bytes / Median(copySeconds)};
}

void Print(const Measurement& m) {
  std::printf("%-46s %-16s %10.1f %10.1f %7.1f%%\n", m.kernel.c_str(), m.frame.c_str(),
              m.bytesPerSecond * 1e-9, m.copyBytesPerSecond * 1e-9,
              100.0 * m.bytesPerSecond / m.copyBytesPerSecond);
  std::fflush(stdout);
}

std::vector<Measurement> MeasureAll(const Device& device) {
  std::vector<Measurement> measurements;
  std::printf("%-46s %-16s %10s %10s %8s\n", "kernel", "frame", "GB/s", "copy GB/s", "of copy");
  for (const Size size : {Size{3840, 2160}, Size{7680, 4320}}) {
    for (const auto format : {KS::kBgraFloat, KS::kBgraHalf}) {
      const std::string frameName = std::to_string(size.width) + "x" + std::to_string(size.height) +
                                    (format == KS::kBgraFloat ? " float" : " half");
      const PX::VideoFrameRef frame = MakeFrame(device, format, size);
      const PX::VideoFrameRef other = MakeFrame(device, format, size);
      for (std::size_t i = 0; i < Quillon::kKernelCount; ++i) {
        measurements.push_back(
            Measure(device, static_cast<Quillon::KernelId>(i), frame, other, frameName));
        Print(measurements.back());
      }
    }
  }
  return measurements;
}

void WriteJson(const std::string& path, const IL::DeviceInfo& info,
               const std::vector<Measurement>& measurements) {
  std::ofstream out(path);
  out << "{\"device\": \"" << info.name << "\", \"driver\": \"" << info.driver
      << "\", \"kernels\": [\n";
  for (const Measurement& m : measurements) {
    out << "  {\"kernel\": \"" << m.kernel << "\", \"frame\": \"" << m.frame
        << "\", \"bytes_per_second\": " << m.bytesPerSecond
        << ", \"copy_bytes_per_second\": " << m.copyBytesPerSecond << "}"
        << (&m == &measurements.back() ? "\n" : ",\n");
  }
  out << "]}\n";
  if (!out.flush()) throw std::runtime_error(path + " cannot be written");
}

/// The device of this name, "cuda:0" for example; without a name the first that runs kernels.
Device Choose(const std::string& name) {
  for (const IL::DeviceInfo& info : IL::ListDevices()) {
    const std::string itsName = IL::DeviceName(info.platformKind, info.ordinal);
    if (!info.obstacle.empty() || (!name.empty() && name != itsName)) continue;
    std::cout << itsName << ": " << info.name << ", " << info.platform << ", driver " << info.driver
              << '\n';
    return IL::OpenDevice(info.platformKind, info.ordinal);
  }
  throw std::runtime_error("there is no device " + name);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const Device device = Choose(argc > 1 ? argv[1] : "");
    if (device == nullptr) throw std::runtime_error("the device cannot be used");
    const std::vector<Measurement> measurements = MeasureAll(device);
    if (argc > 2) WriteJson(argv[2], device->Info(), measurements);
  } catch (const std::exception& error) {
    std::cerr << "quillon-gpu-bench: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
