#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/pavix/IVideoFrame.h"
#include "mapper/Plan.h"
#include "tools/quillon/options/MappingOptions.h"
#include "tools/quillon/picture/Exposure.h"

namespace Quillon::Cli {

/// The device of --device, made ready; null for the processor. Never another in its place. Throws
/// CommandError.
std::shared_ptr<Mapper::Device> RequireDevice(const std::string& name);

/// Measures the peak of what is to be mapped, in nits.
using PeakMeasurement = std::function<double()>;

/// A still costs little to measure, a clip a pass over all of it.
enum class PictureKind { Still, Clip };

/// The peak to map from: what the options say; without that the file's metadata (MaxCLL, else the
/// mastering display's peak), else measured for scene-linear pictures and PQ stills, else the
/// transfer's nominal peak. `path` is what messages call the picture. Throws CommandError, and what
/// the measurement throws.
Mapper::SourcePeak ChooseSourcePeak(const PeakOptions& options, const std::filesystem::path& path,
                                    const Mapper::Source& source, PictureKind kind, int white,
                                    const PeakMeasurement& measurePeak);

/// A measured peak as pictures in these colours are mapped from it: PQ has no light above 10000
/// nits and HLG none above the peak of its display, whatever lies above their full scale.
double HeldPeak(double measuredNits, const orvmediatypes::color::ColorDescription& colors,
                int white);

/// Resolves the options for the pictures of a clip whose file says `file`, as the options override
/// it; `measurePeak` is called where the peak has to be measured, and all light is to be multiplied
/// by `exposure` before it is mapped. Throws CommandError.
Mapper::Plan PlanPictures(const MappingOptions& options, const std::filesystem::path& path,
                          const Mapper::Source& file, double exposure,
                          const PeakMeasurement& measurePeak);

/// A picture as the engine gets it, float BGRA, and what will be done to it.
struct PlannedPicture {
  Mapper::Plan plan;
  PX::VideoFrameRef frame;
  std::optional<Exposure> exposure;  ///< of `frame`, where one was asked for
};

/// Resolves the options for one still, whose colour space is what its file says and becomes what
/// the options make of it; scene-linear light is scaled as `TagPicture` does, and exposed. Throws
/// CommandError.
PlannedPicture PlanPicture(const MappingOptions& options, const std::filesystem::path& path,
                           const PX::VideoFrameRef& frame, const Mapper::ContentLight& light = {},
                           float fileWhiteNits = 0.0F);

/// The planned picture, mapped: a new float BGRA frame in the destination's colour space. `name` is
/// what messages call the picture. Throws CommandError when the engine refuses.
PX::VideoFrameRef MapPicture(const PlannedPicture& picture, const std::string& name);

/// Maps a frame in the plan's source colours into another one, whatever the formats of both. Throws
/// CommandError.
void MapInto(const Mapper::Plan& plan, const std::string& name, const PX::VideoFrameRef& source,
             PX::VideoFrameRef& destination);

}  // namespace Quillon::Cli
