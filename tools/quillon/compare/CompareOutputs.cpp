#include "tools/quillon/compare/CompareOutputs.h"

#include <cstdint>
#include <iostream>
#include <vector>

#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/io/WriteStill.h"
#include "tools/quillon/picture/BitmapFrame.h"
#include "tools/quillon/picture/PictureForEye.h"

namespace Quillon::Cli {

void CheckCompareTargets(const CompareOptions& options) {
  if (!options.output.empty()) {
    if (LowerCaseExtension(options.output) != ".png") {
      throw StillError(StillErrorKind::NotSupported, options.output, "a view is a PNG picture",
                       "give it a name that ends in .png");
    }
    CheckTargetFile(options.output, options.overwrite);
  }
  if (options.WritesJson()) CheckTargetFile(options.json, options.overwrite);
}

void WriteCompareView(const CompareOptions& options, const Comparison& comparison,
                      const PX::VideoFrameRef& a, const PX::VideoFrameRef& b) {
  if (options.output.empty()) return;
  ViewSettings view;
  view.view = options.view;
  view.splitShare = options.splitShare.value_or(view.splitShare);
  if (view.ShowsPictures()) {
    view.hdrPeakNits = CommonHdrPeak(a, b, options.settings.white);
  }
  if (view.hdrPeakNits && !options.quiet) {
    std::cerr
        << "note: for the view, what is not SDR is mapped to sRGB as 'quillon map' does, from "
           "a peak of "
        << *view.hdrPeakNits << " nits in both pictures; the figures are of the pictures "
        << "themselves\n";
  }
  StillOutput output;
  output.frame = FrameOfBitmap(DrawCompareView(a, b, comparison, options.settings, view));
  output.overwrite = options.overwrite;
  WriteStill(output, options.output);
}

void WriteCompareJson(const CompareOptions& options, const std::string& json) {
  if (!options.WritesJson()) return;
  const std::vector<std::uint8_t> bytes(json.begin(), json.end());
  WriteTargetFile(options.json, bytes, options.overwrite);
}

}  // namespace Quillon::Cli
