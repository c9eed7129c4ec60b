#include <cstdint>
#include <cstdio>

#include "base/CopyQuality.h"
#include "engine/Quillon.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"
#include "mapper/Content.h"
#include "mapper/EngineMessages.h"
#include "mapper/Frames.h"
#include "refhost/ironlane/GPUDevice.h"

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

/// Float BGRA frames of system memory, through frames on the plan's device.
Failure ApplyOnDevice(const Plan::Content& plan, const PX::VideoFrameRef& source,
                      const PX::VideoFrameRef& destination) {
  const auto from = MakeFloatFrameOn(plan.device, source->GetBounds(), source->GetColorSpace());
  if (!from) return from.error();
  auto to = MakeFloatFrameOn(plan.device, source->GetBounds(), destination->GetColorSpace());
  if (!to) return to.error();
  if (auto failure = MovePixels(source, *from)) return failure;
  if (auto failure = Apply(plan, *from, *to)) return failure;
  return MovePixels(*to, destination);
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

/// A float BGRA frame in the engine's source colour space, mapped into the destination whatever its
/// format.
Failure ApplyFloat(const Plan::Content& plan, const PX::VideoFrameRef& source,
                   PX::VideoFrameRef& destination) {
  const bool direct = IsFloat(destination) && destination->GetColorSpace().Description() ==
                                                  plan.DestinationSpace().Description();
  PX::VideoFrameRef mapped = destination;
  if (!direct) {
    const orvcore::geom::Bounds bounds = source->GetBounds();
    auto made = MakeFloatFrame(bounds.width, bounds.height, plan.DestinationSpace());
    if (!made) return made.error();
    mapped = *made;
  }
  auto failure =
      plan.device != nullptr ? ApplyOnDevice(plan, source, mapped) : Apply(plan, source, mapped);
  if (failure || direct) return failure;
  return CopyConverted(mapped, destination, plan.asked.white);
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
  if (AreSameColors(tagged, engine) && (content.device == nullptr || IsFloat(source))) {
    source->SetColorSpace(CodedAs(tagged, engine));
    return content.device == nullptr ? Apply(content, source, destination)
                                     : ApplyFloat(content, source, destination);
  }
  const auto floats = ConvertToFloat(source, content.SourceSpace(), content.asked.white);
  if (!floats) return floats.error();
  return ApplyFloat(content, *floats, destination);
}

}  // namespace Quillon::Mapper
