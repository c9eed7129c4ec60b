#include "tools/quillon/io/StillOutputs.h"

#include <algorithm>
#include <string>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"
#include "mapper/Colors.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/ColorTags.h"
#include "tools/quillon/io/StillError.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

constexpr orvmediatypes::RenderQuality kQuality = 4;

[[noreturn]] void Fail(const std::filesystem::path& path, const std::string& wrong,
                       const std::string& remedy) {
  throw StillError(StillErrorKind::NotSupported, path, wrong, remedy);
}

}  // namespace

int ChooseDepth(const StillOutput& output, const std::filesystem::path& path, const char* format,
                std::span<const int> allowed, int byDefault) {
  if (!output.depth) return byDefault;
  if (std::find(allowed.begin(), allowed.end(), *output.depth) != allowed.end()) {
    return *output.depth;
  }
  std::string list;
  for (const int depth : allowed) list += (list.empty() ? "" : " or ") + std::to_string(depth);
  Fail(path,
       std::string(format) + " is not written with " + std::to_string(*output.depth) +
           " bits for these colours",
       "choose " + list);
}

PX::VideoFrameRef ConvertForFile(const StillOutput& output, const std::filesystem::path& path,
                                 orvmediatypes::PixelFormat format, const ColorSpace& colorSpace) {
  const orvcore::geom::Bounds bounds = output.frame->GetBounds();
  PX::VideoFrameRef frame;
  if (KS::CreateVideoFrame(frame, format, bounds.width, bounds.height,
                           output.frame->GetPixelAspectRatio(), colorSpace, false, false) < 0) {
    Fail(path, "there is no memory for it", "write a smaller picture");
  }
  if (KS::VideoFrameManipulators::CopyFrame(output.frame, frame, kQuality, output.settings) < 0) {
    Fail(path, "its colours cannot be converted for this format", "choose another colour space");
  }
  return frame;
}

ColorDescription RequireCodePoints(const StillOutput& output, const std::filesystem::path& path) {
  ColorDescription description = output.frame->GetColorSpace().Description();
  if (description.primaries == RefHost::kUnspecifiedCodePoint)
    SetPrimaries(description, description.chromaticities);
  if (!Mapper::Tells(description.primaries) || !Mapper::Tells(description.transfer)) {
    Fail(path, "its colours have no CICP code points, which this format needs",
         "choose a named colour space or write EXR");
  }
  return description;
}

bool IsHdrTransfer(int transfer) {
  return transfer == RefHost::kTransferPQ || transfer == RefHost::kTransferHLG;
}

}  // namespace Quillon::Cli
