#include <cstdint>
#include <cstdio>

#include "base/CopyQuality.h"
#include "engine/Quillon.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"
#include "mapper/Content.h"
#include "mapper/EngineMessages.h"
#include "mapper/FitFrame.h"
#include "mapper/Frames.h"
#include "refhost/ironlane/GPUDevice.h"
#include "refhost/kestrel/PixelFormats.h"

using orvmediatypes::color::ColorSpace;

namespace Quillon::Mapper {

namespace {

std::string HexCode(int code) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<std::uint32_t>(code));
  return text;
}

Failure Apply(const Plan::Content& plan, const PX::VideoFrameRef& source,
              PX::VideoFrameRef& destination) {
  const EngineMessages messages;
  const int result = ApplyGamutMapping(source, plan.settings, destination);
  if (result >= 0) return std::nullopt;
  return Error{Code::EngineRefused, "the engine refused with " + HexCode(result),
               messages.Joined()};
}

Result<PX::VideoFrameRef> MakeFloatFrameOn(const std::shared_ptr<Device>& device,
                                           const orvcore::geom::Bounds& bounds,
                                           const ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  const EngineMessages messages;
  if (KS::CreateGPUVideoFrame(frame, device, orvmediatypes::kLinearFloatBGRA, bounds.width,
                              bounds.height, {}, {}, {}, colorSpace, 0, 0, 0, nullptr, {},
                              false) >= 0) {
    return frame;
  }
  return Error{Code::NoDevice,
               "no frame of " + std::to_string(bounds.width) + "x" + std::to_string(bounds.height) +
                   " can be made on " + DeviceName(device.get()),
               messages.Joined()};
}

/// Pixels between system memory and a device, colours left alone.
Failure MovePixels(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to) {
  const EngineMessages messages;
  if (KS::GPUFrameManipulators::CopyFrame(from, to, kCopyQuality, {}) >= 0) return std::nullopt;
  return Error{Code::DeviceFailed, "the device failed", messages.Joined()};
}

/// The same on the frame's device.
Failure Convert(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to, int white) {
  const EngineMessages messages;
  if (KS::GPUFrameManipulators::CopyFrame(from, to, kCopyQuality, ColorManagementFor(white)) >= 0) {
    return std::nullopt;
  }
  return Error{Code::DeviceFailed, "the device failed", messages.Joined()};
}

/// Float BGRA frames of system memory, the destination in the plan's colours, through frames on the
/// plan's device.
Failure ApplyOnDevice(const Plan::Content& plan, const PX::VideoFrameRef& source, bool fits,
                      const PX::VideoFrameRef& destination) {
  const orvcore::geom::Bounds bounds = source->GetBounds();
  const auto from = MakeFloatFrameOn(plan.device, bounds, source->GetColorSpace());
  if (!from) return from.error();
  auto to = MakeFloatFrameOn(plan.device, bounds, plan.result);
  if (!to) return to.error();
  if (auto failure = MovePixels(source, *from)) return failure;
  if (auto failure = Apply(plan, *from, *to)) return failure;
  if (!plan.WritesLight()) return MovePixels(*to, destination);
  if (fits) {
    if (auto failure = FitOnDevice(*plan.fit, *to)) return failure;
  }
  const auto encoded = MakeFloatFrameOn(plan.device, bounds, plan.DestinationSpace());
  if (!encoded) return encoded.error();
  if (auto failure = Convert(*to, *encoded, plan.asked.white)) return failure;
  return MovePixels(*encoded, destination);
}

bool IsFloat(const PX::VideoFrameRef& frame) {
  return frame->GetPixelFormat() == orvmediatypes::kLinearFloatBGRA;
}

/// Whether two colour spaces differ in how they are coded alone.
bool AreSameColors(const ColorDescription& one, const ColorDescription& other) {
  return one.primaries == other.primaries && one.transfer == other.transfer &&
         one.chromaticities == other.chromaticities;
}

/// The engine's source colour space, coded as the frame is.
ColorSpace CodedAs(const ColorDescription& frame, const ColorDescription& engine) {
  ColorDescription coded = engine;
  coded.matrix = frame.matrix;
  coded.fullRange = frame.fullRange;
  coded.chromaLocation = frame.chromaLocation;
  return ColorSpace(coded);
}

/// A frame in the colours that the engine works from.
struct WorkingFrame {
  PX::VideoFrameRef frame;
  bool isOwn = false;  ///< made here, so that it may be written
};

/// A float BGRA frame with the picture's size.
Result<PX::VideoFrameRef> MakeFrameFor(const PX::VideoFrameRef& picture,
                                       const ColorSpace& colorSpace) {
  const orvcore::geom::Bounds bounds = picture->GetBounds();
  return MakeFloatFrame(bounds.width, bounds.height, colorSpace);
}

/// A frame to work in: the destination itself where it is such a frame, else one that is converted
/// into the destination when it is done.
Result<PX::VideoFrameRef> FrameBefore(const PX::VideoFrameRef& destination,
                                      const ColorSpace& colorSpace) {
  if (IsFloat(destination) &&
      destination->GetColorSpace().Description() == colorSpace.Description()) {
    return destination;
  }
  return MakeFrameFor(destination, colorSpace);
}

Failure Deliver(const Plan::Content& plan, const PX::VideoFrameRef& mapped,
                const PX::VideoFrameRef& destination) {
  if (mapped.Object() == destination.Object()) return std::nullopt;
  return CopyConverted(mapped, destination, plan.asked.white);
}

bool Fits(const Plan::Content& plan, const PX::VideoFrameRef& destination) {
  if (plan.fit == nullptr) return false;
  const auto format = RefHost::DescribeFormat(destination->GetPixelFormat());
  const bool isInteger = format && format->sampleType == RefHost::SampleType::UnsignedInteger;
  return isInteger || plan.asked.fit == GamutFitting::Hue;
}

Failure MapOnDevice(const Plan::Content& plan, const WorkingFrame& source,
                    const PX::VideoFrameRef& destination) {
  const auto mapped = FrameBefore(destination, plan.DestinationSpace());
  if (!mapped) return mapped.error();
  if (auto failure = ApplyOnDevice(plan, source.frame, Fits(plan, destination), *mapped))
    return failure;
  return Deliver(plan, *mapped, destination);
}

Failure MapOnProcessor(const Plan::Content& plan, const WorkingFrame& source,
                       const PX::VideoFrameRef& destination) {
  const bool inPlace = source.isOwn && plan.WritesLight() &&
                       source.frame->GetColorSpace().Description() == plan.result.Description();
  auto mapped = inPlace ? Result(source.frame) : FrameBefore(destination, plan.result);
  if (!mapped) return mapped.error();
  if (auto failure = Apply(plan, source.frame, *mapped)) return failure;
  if (Fits(plan, destination)) FitFrame(*plan.fit, *mapped);
  return Deliver(plan, *mapped, destination);
}

}  // namespace

const ColorDescription& SourceColors(const Plan& plan) { return plan.Inside().source.colors; }

const ColorSpace& DestinationColorSpace(const Plan& plan) {
  return plan.Inside().DestinationSpace();
}

Failure MapFrame(const Plan& plan, const PX::VideoFrameRef& source,
                 PX::VideoFrameRef& destination) {
  const Plan::Content& content = plan.Inside();
  const ColorDescription tagged = source->GetColorSpace().Description();
  const ColorDescription& engine = content.SourceSpace().Description();
  const bool isEngines = AreSameColors(tagged, engine);
  if (isEngines) source->SetColorSpace(CodedAs(tagged, engine));
  if (isEngines && content.device == nullptr && !content.WritesLight()) {
    return Apply(content, source, destination);
  }
  WorkingFrame working{source};
  if (!isEngines || (content.device != nullptr && !IsFloat(source))) {
    const auto floats = ConvertToFloat(source, content.SourceSpace(), content.asked.white);
    if (!floats) return floats.error();
    working = {*floats, true};
  }
  return content.device != nullptr ? MapOnDevice(content, working, destination)
                                   : MapOnProcessor(content, working, destination);
}

}  // namespace Quillon::Mapper
