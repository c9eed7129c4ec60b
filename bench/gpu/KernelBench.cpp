#include "bench/gpu/KernelBench.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string_view>

#include "bench/Frames.h"
#include "bench/Timing.h"
#include "gpu/KernelTarget.h"
#include "gpu/Kernels.h"
#include "refhost/kestrel/GPUFrame.h"

namespace {

/// Support parameters such as a picture of 1000 nits gives for a display of 203.
Quillon::SupportVector ParamsFor(const Quillon::KernelSignature& kernel) {
  static const std::map<std::string_view, Quillon::SupportVector> kParams = {
      {Quillon::GamutCompressionReinhard::kFacts.kernel.name, {1.3F}},
      {Quillon::GamutCompressionDesaturation::kFacts.kernel.name, {0.2126F, 0.7152F, 0.0722F}},
      {Quillon::HuePreservationToneMap::kFacts.kernel.name, {4.926F, 0.5F, 1.0F}},
      {Quillon::Bt2446AToneMap::kFacts.kernel.name, {13.26171F, 7.098651F, 0.396F, 1.0F}},
      {Quillon::CARToneMap::kFacts.kernel.name,
       {0.5F, 1.4F, 0.7F, 1.0F, 0.2126F, 0.7152F, 0.0722F}}};
  const auto found = kParams.find(kernel.name);
  if (found != kParams.end()) return found->second;
  return {0.0F,    0.751827F, 0.0F, 0.5806889F, 203.0F,  0.751827F, 0.0F,
          0.7724F, 0.6586F,   1.9F, 0.2126F,    0.7152F, 0.0722F};
}

/// As many frames as there is room for, up to 16; on a processor, where one takes long enough, one.
std::size_t CountOfFrames(const RefHost::DeviceInfo& info, std::size_t frameBytes) {
  if (info.isProcessor) return 1;
  return std::clamp<std::size_t>(info.memoryBytes / 4 / frameBytes, 1, 16);
}

/// Frames of one shape: a picture, and others that are to become it.
class Frames {
 public:
  Frames(const DeviceRef& device, const Shape& shape)
      : device_(device), picture_(MakePicture(device, shape, Bt2020(8, 0))) {
    Check(RefHost::ViewGPUFrame(picture_, view_), "viewing a frame");
    for (std::size_t i = CountOfFrames(device->Info(), view_.Bytes()); i > 0; --i) {
      frames_.push_back(MakeOnDevice(device, shape, picture_->GetColorSpace()));
    }
  }

  /// Seconds of a copy of the picture into a frame, done for all.
  double CopyPicture() {
    return SecondsEach([&](const PX::VideoFrameRef& frame) {
      RefHost::GPUFrameView to;
      Check(RefHost::ViewGPUFrame(frame, to), "viewing a frame");
      Check(device_->Copy(view_.pixels, to.pixels, view_.Bytes()), "a copy");
    });
  }

  /// Seconds of the kernel over a frame, done for all.
  double Run(const Quillon::KernelSignature& kernel) {
    const orvmediatypes::color::ToneMapControls controls{.peak = 4.926F, .colorPreservation = 0.5F};
    return SecondsEach([&](const PX::VideoFrameRef& frame) {
      Quillon::KernelTarget target;
      Quillon::PreparedKernel prepared;
      Check(Quillon::MakeKernelTarget(frame, device_, target), "describing a frame");
      Check(Quillon::PrepareKernel(target, kernel, ParamsFor(kernel), controls, prepared),
            "loading a kernel");
      Check(Quillon::RunKernel(target, prepared), "a launch");
    });
  }

  bool IsMapped() const { return BytesOf(frames_.back()) != BytesOf(picture_); }

 private:
  template <class Function>
  double SecondsEach(const Function& function) {
    Check(device_->Finish(), "the device");
    const double seconds = SecondsOf([&] {
      for (const PX::VideoFrameRef& frame : frames_) function(frame);
      Check(device_->Finish(), "the device");
    });
    return seconds / static_cast<double>(frames_.size());
  }

  DeviceRef device_;
  PX::VideoFrameRef picture_;
  RefHost::GPUFrameView view_;
  std::vector<PX::VideoFrameRef> frames_;
};

KernelTime TimeKernel(Frames& frames, const Quillon::KernelSignature& kernel, const Shape& shape) {
  const std::string name(kernel.name);
  frames.CopyPicture();
  const double once = frames.Run(kernel);
  if (!frames.IsMapped()) throw std::runtime_error(name + " left the picture as it was");
  std::vector<double> seconds;
  std::vector<double> copySeconds;
  for (int rounds = std::clamp(static_cast<int>(0.2 / once), 3, 25); rounds > 0; --rounds) {
    copySeconds.push_back(frames.CopyPicture());
    seconds.push_back(frames.Run(kernel));
  }
  return {name, shape.Name(), Median(seconds), Median(copySeconds)};
}

}  // namespace

std::vector<KernelTime> TimeKernels(const DeviceRef& device, const Shape& shape) {
  Frames frames(device, shape);
  std::vector<KernelTime> times;
  for (const Quillon::KernelSignature* kernel : Quillon::kKernels) {
    times.push_back(TimeKernel(frames, *kernel, shape));
  }
  return times;
}
