#include <string>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"
#include "tests/host/Describe.h"
#include "tests/host/Frame.h"
#include "tests/host/Host.h"

using scripted::Host;
using scripted::Outcome;

namespace KS {

namespace {

std::string Ratio(orvmediatypes::PixelAspectRatio aspect) {
  return std::to_string(aspect.numerator) + ":" + std::to_string(aspect.denominator);
}

}  // namespace

int CreateVideoFrame(PX::VideoFrameRef& frame, orvmediatypes::PixelFormat format, int width,
                     int height, orvmediatypes::PixelAspectRatio aspect,
                     const orvmediatypes::color::ColorSpace& colorSpace, bool clear, bool shared) {
  const Outcome outcome = Host::Instance().Enter(
      "KS::CreateVideoFrame",
      scripted::Arguments(frame, format, width, height, Ratio(aspect), colorSpace, clear, shared));
  if (outcome.kind == Outcome::Kind::Nothing || outcome.code < 0) return outcome.code;
  frame = scripted::MakeFrame({.name = "created",
                               .bounds = {0, 0, width, height},
                               .format = format,
                               .colors = colorSpace.Description(),
                               .aspect = aspect});
  return outcome.code;
}

int CreateGPUVideoFrame(PX::VideoFrameRef& frame, const std::shared_ptr<IL::Device>& device,
                        orvmediatypes::PixelFormat format, int width, int height,
                        orvmediatypes::PixelAspectRatio aspect, orvmediatypes::FieldType fieldType,
                        orvcore::geom::PointT<int> origin,
                        const orvmediatypes::color::ColorSpace& colorSpace, std::uint64_t reserved1,
                        std::uint64_t reserved2, std::uint64_t reserved3,
                        const std::shared_ptr<const orvcore::allocator::RecycledMemory>& memory,
                        const PX::VideoFrameRef& parent, bool shared) {
  const Outcome outcome = Host::Instance().Enter(
      "KS::CreateGPUVideoFrame",
      scripted::Arguments(frame, scripted::NameOfDevice(device), format, width, height,
                          Ratio(aspect), "field " + std::to_string(static_cast<int>(fieldType)),
                          "(" + std::to_string(origin.x) + " " + std::to_string(origin.y) + ")",
                          colorSpace, std::to_string(reserved1), std::to_string(reserved2),
                          std::to_string(reserved3),
                          std::string(memory == nullptr ? "none" : "memory"), parent, shared));
  if (outcome.kind == Outcome::Kind::Nothing || outcome.code < 0) return outcome.code;
  frame = scripted::MakeFrame({.name = "created",
                               .bounds = {0, 0, width, height},
                               .format = format,
                               .colors = colorSpace.Description(),
                               .aspect = aspect,
                               .hasMemory = false,
                               .onGPU = true,
                               .device = std::static_pointer_cast<scripted::Device>(device),
                               .devicePointer = 0x2000});
  return outcome.code;
}

}  // namespace KS

namespace KS::VideoFrameManipulators {

int CopyFrame(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              orvmediatypes::RenderQuality quality,
              const orvmediatypes::color::ColorManagementSettings& settings) {
  const Outcome outcome = Host::Instance().Enter("KS::VideoFrameManipulators::CopyFrame",
                                                 scripted::Arguments(from, to, quality, settings));
  if (!outcome.IsNormal()) return outcome.code;
  Host::Instance().results.copyFrame(from, to);
  return 0;
}

}  // namespace KS::VideoFrameManipulators

namespace KS::GPUFrameManipulators {

int CopyFrame(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              orvmediatypes::RenderQuality quality,
              const orvmediatypes::color::ColorManagementSettings& settings) {
  const Outcome outcome = Host::Instance().Enter("KS::GPUFrameManipulators::CopyFrame",
                                                 scripted::Arguments(from, to, quality, settings));
  if (!outcome.IsNormal()) return outcome.code;
  Host::Instance().results.copyFrame(from, to);
  return 0;
}

}  // namespace KS::GPUFrameManipulators
