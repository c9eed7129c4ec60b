#include <string>

#include "host/KS/CreateFrames.h"
#include "host/KS/FrameManipulators.h"
#include "tests/host/Describe.h"
#include "tests/host/Frame.h"
#include "tests/host/Host.h"

using scripted::Host;
using scripted::Outcome;

namespace KS {

int CreateVideoFrame(PX::VideoFrameRef& frame, orvmediatypes::PixelFormat format, int width,
                     int height, orvmediatypes::PixelAspectRatio aspect,
                     const orvmediatypes::color::ColorSpace& colorSpace, bool clear, bool shared) {
  const std::string ratio =
      std::to_string(aspect.numerator) + ":" + std::to_string(aspect.denominator);
  const Outcome outcome = Host::Instance().Enter(
      "KS::CreateVideoFrame",
      scripted::Arguments(frame, format, width, height, ratio, colorSpace, clear, shared));
  if (!outcome.IsNormal()) return outcome.code;
  frame = scripted::MakeFrame({.name = "created",
                               .bounds = {0, 0, width, height},
                               .format = format,
                               .colors = colorSpace.Description(),
                               .aspect = aspect});
  return 0;
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
