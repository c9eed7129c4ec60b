#include "tools/quillon/picture/MapPicture.h"

#include <utility>

#include "mapper/Frames.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/LightLevels.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/process/MapperErrors.h"

namespace Quillon::Cli {

using Mapper::Plan;
using Mapper::Source;
using Mapper::SourcePeak;
using orvmediatypes::color::ColorSpace;

namespace {

Source Tagged(const MappingOptions& options, const std::filesystem::path& path,
              const Source& file) {
  return {TaggedColors(path, file.colors, options.source), file.light};
}

Plan PlanTagged(const MappingOptions& options, const std::filesystem::path& path,
                const Source& source, std::shared_ptr<Mapper::Device> device,
                const PeakMeasurement& measurePeak) {
  const SourcePeak peak =
      ChooseSourcePeak(options.peak, path, source, options.settings.white, measurePeak);
  return ValueOf(Plan::Make(source, options.target, options.settings, peak, std::move(device)));
}

}  // namespace

std::shared_ptr<Mapper::Device> RequireDevice(const std::string& name) {
  auto device = Mapper::OpenDevice(name);
  if (device) return *std::move(device);
  const Mapper::Error& error = device.error();
  const std::string option = "--device " + name + ": ";
  if (name == "gpu") {
    throw CommandError(ExitCode::NotSupported,
                       option + error.message +
                           "; 'quillon devices' tells why, and --device cpu works everywhere");
  }
  throw CommandError(ExitCode::NotSupported,
                     option + (error.trace.empty() ? error.message : error.trace) +
                         "; 'quillon devices' lists those there are");
}

SourcePeak ChooseSourcePeak(const PeakOptions& options, const std::filesystem::path& path,
                            const Source& source, int white, const PeakMeasurement& measurePeak) {
  switch (options.from) {
    case PeakSource::Number:
      return {options.nits, "given"};
    case PeakSource::Measure:
      return {measurePeak(), "measured"};
    case PeakSource::Scenes:
      return {measurePeak(), "measured, scene by scene"};
    case PeakSource::Metadata:
    case PeakSource::Default:
      break;
  }
  if (const auto peak = MetadataPeak(source)) return *peak;
  if (const auto peak = Mapper::NominalPeak(source.colors, white)) return *peak;
  if (options.from == PeakSource::Metadata) {
    throw CommandError(ExitCode::Usage, path.string() +
                                            " carries no light-level metadata; use --peak "
                                            "measure, or --peak with a number of nits");
  }
  return {measurePeak(), "measured"};
}

Plan PlanPictures(const MappingOptions& options, const std::filesystem::path& path,
                  const Source& file, const PeakMeasurement& measurePeak) {
  auto device = RequireDevice(options.device);
  return PlanTagged(options, path, Tagged(options, path, file), std::move(device), measurePeak);
}

PlannedPicture PlanPicture(const MappingOptions& options, const std::filesystem::path& path,
                           const PX::VideoFrameRef& frame, const Mapper::ContentLight& light) {
  auto device = RequireDevice(options.device);
  const Source source = Tagged(options, path, {frame->GetColorSpace().Description(), light});
  frame->SetColorSpace(ColorSpace(source.colors));
  const int white = options.settings.white;
  const PX::VideoFrameRef floats = ConvertToFloat(
      frame, Mapper::MappingColorSpace(source.colors, options.target, options.settings), white);
  const auto measurePeak = [&] { return MeasureLightLevels(floats, white).peakNits; };
  return {PlanTagged(options, path, source, std::move(device), measurePeak), floats};
}

PX::VideoFrameRef MapPicture(const PlannedPicture& picture, const std::string& name) {
  const orvcore::geom::Bounds bounds = picture.frame->GetBounds();
  PX::VideoFrameRef mapped =
      MakeFloatFrame(bounds.width, bounds.height, Mapper::DestinationColorSpace(picture.plan));
  MapInto(picture.plan, name, picture.frame, mapped);
  return mapped;
}

void MapInto(const Plan& plan, const std::string& name, const PX::VideoFrameRef& source,
             PX::VideoFrameRef& destination) {
  if (const auto failure = Mapper::MapFrame(plan, source, destination)) {
    FailMapping(*failure, name);
  }
}

}  // namespace Quillon::Cli
