#pragma once

#include <array>
#include <optional>

#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/compare/Compare.h"
#include "tools/quillon/plot/DrawScene.h"
#include "tools/quillon/process/Choice.h"

namespace Quillon::Cli {

enum class CompareView { SideBySide, Split, DeltaE, Clip };

/// What `--view` takes.
inline constexpr std::array<Choice<CompareView>, 4> kCompareViews = {
    {{"side-by-side", CompareView::SideBySide},
     {"split", CompareView::Split},
     {"delta-e", CompareView::DeltaE},
     {"clip", CompareView::Clip}}};

struct ViewSettings {
  CompareView view = CompareView::SideBySide;
  /// Share of the width that a split view gives A.
  double splitShare = 0.5;
  /// From which HDR pictures are mapped for the eye, as `CommonHdrPeak` finds it.
  std::optional<double> hdrPeakNits;

  /// Whether the pictures themselves are to be seen.
  bool ShowsPictures() const { return view != CompareView::DeltaE; }
};

/// Draws two compared pictures in sRGB:
/// - side by side, A on the left, with a divider of one pixel between them;
/// - split: the left of A and the right of B. The divider covers the first column that is not A's;
///   there is none where the whole picture is A's or B's;
/// - delta-E ITP in false colours, with a legend below;
/// - clip: both side by side in grey, clipped and out-of-gamut pixels in false colours, with a
///   legend below.
/// Throws CommandError.
Bitmap DrawCompareView(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b,
                       const Comparison& comparison, const CompareSettings& compared,
                       const ViewSettings& settings);

}  // namespace Quillon::Cli
