#pragma once

#include <functional>
#include <span>

#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/pavix/IVideoFrame.h"
#include "mapper/LightHistogram.h"
#include "mapper/Plan.h"

/// For programs that hold their pictures as frames of the reference host.
namespace Quillon {
namespace [[gnu::visibility("default")]] Mapper {

/// Colour-management settings with graphics white at a whole number of nits.
orvmediatypes::color::ColorManagementSettings ColorManagementFor(int white);

/// A new float BGRA frame in system memory, contents undefined.
Result<PX::VideoFrameRef> MakeFloatFrame(int width, int height,
                                         const orvmediatypes::color::ColorSpace& colorSpace);

/// Copies a frame into another one in system memory, into its format and colour space.
Failure CopyConverted(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to, int white);

/// The frame as a new float BGRA frame in another colour space.
Result<PX::VideoFrameRef> ConvertToFloat(const PX::VideoFrameRef& frame,
                                         const orvmediatypes::color::ColorSpace& colorSpace,
                                         int white);

/// Rows `first` to before `last` of a frame in system memory, as a frame over the same memory,
/// which lives no longer. They are rows of the frame; where chroma has half as many, `first` is
/// even. Throws std::bad_alloc.
PX::VideoFrameRef ShowRows(const PX::VideoFrameRef& frame, int first, int last);

/// Gives the light of every pixel of a frame in system memory, row by row, in nits: the largest of
/// R, G and B, as `MeasureLight` takes it.
Failure ForEachLight(const PX::VideoFrameRef& frame, int white,
                     const std::function<void(std::span<const float>)>& useRow);

/// The pixels of a frame in system memory, counted by their light.
Result<LightHistogram> CountLight(const PX::VideoFrameRef& frame, int white);

/// `MeasureLight` of a frame.
Result<LightLevels> MeasureLight(const PX::VideoFrameRef& frame, int white,
                                 double percent = kSteadyPercent);

/// The colour space that the engine works from for a source in `tagged` colours. Frames in it are
/// mapped without a conversion before.
orvmediatypes::color::ColorSpace MappingColorSpace(const ColorDescription& tagged,
                                                   const Target& target, const Settings& settings);

/// The colours that a plan maps from, as its caller described them.
const ColorDescription& SourceColors(const Plan& plan);

/// The colour space that a plan maps into, with its peak.
const orvmediatypes::color::ColorSpace& DestinationColorSpace(const Plan& plan);

/// `Plan::Map` for frames in system memory. The source is in the plan's source colours, or in
/// `MappingColorSpace` of them; its colour space says which, and may be set to the plan's without
/// its metadata.
Failure MapFrame(const Plan& plan, const PX::VideoFrameRef& source, PX::VideoFrameRef& destination);

}  // namespace Mapper
}  // namespace Quillon
