#include "tools/quillon/picture/MapPicture.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "mapper/Frames.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/LightLevels.h"
#include "tools/quillon/picture/SceneLight.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/process/MapperErrors.h"

namespace Quillon::Cli {

using Mapper::Plan;
using Mapper::Source;
using Mapper::SourcePeak;
using orvmediatypes::color::ColorDescription;

namespace {

constexpr double kPQNits = 10000.0;

Source Tagged(const MappingOptions& options, const std::filesystem::path& path,
              const Source& file) {
  return {TaggedColors(path, file.colors, options.source), file.light};
}

Plan PlanTagged(const MappingOptions& options, const Source& source, const SourcePeak& peak,
                double exposure, std::shared_ptr<Mapper::Device> device) {
  return ValueOf(Plan::Make(source, options.target, options.settings,
                            {peak.nits * exposure, peak.origin}, std::move(device)));
}

/// Nothing for the percentile that is usual.
std::string PercentText(double percent) {
  if (percent == Mapper::kSteadyPercent) return {};
  std::ostringstream text;
  text << " at " << percent << " %";
  return text.str();
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

double HeldPeak(double measuredNits, const ColorDescription& colors, int white) {
  if (colors.transfer == RefHost::kTransferPQ) return std::min(measuredNits, kPQNits);
  if (colors.transfer != RefHost::kTransferHLG) return measuredNits;
  const auto nominal = Mapper::NominalPeak(colors, white);
  return nominal ? std::min(measuredNits, nominal->nits) : measuredNits;
}

SourcePeak ChooseSourcePeak(const PeakOptions& options, const std::filesystem::path& path,
                            const Source& asTold, PictureKind kind, int white,
                            const PeakMeasurement& measurePeak) {
  const Source source = Mapper::BelieveLight(asTold).source;
  const auto measured = [&](const char* byScenes) {
    return SourcePeak{HeldPeak(measurePeak(), source.colors, white),
                      "measured" + PercentText(options.percent) + byScenes};
  };
  if (options.from == PeakSource::Number) return {options.nits, "given"};
  if (options.from == PeakSource::Measure) return measured("");
  if (options.from == PeakSource::Scenes) return measured(", scene by scene");
  if (const auto peak = MetadataPeak(source)) return *peak;
  const bool isMeasured = kind == PictureKind::Still && options.from == PeakSource::Default &&
                          source.colors.transfer == RefHost::kTransferPQ;
  const auto nominal = Mapper::NominalPeak(source.colors, white);
  if (nominal && !isMeasured) return *nominal;
  if (options.from == PeakSource::Metadata) {
    throw CommandError(ExitCode::Usage, path.string() +
                                            " carries no light-level metadata; use --peak "
                                            "measure, or --peak with a number of nits");
  }
  return measured("");
}

Plan PlanPictures(const MappingOptions& options, const std::filesystem::path& path,
                  const Source& file, double exposure, const PeakMeasurement& measurePeak) {
  auto device = RequireDevice(options.device);
  const Source source = Tagged(options, path, file);
  const SourcePeak peak = ChooseSourcePeak(options.peak, path, source, PictureKind::Clip,
                                           options.settings.white, measurePeak);
  return PlanTagged(options, source, peak, exposure, std::move(device));
}

PlannedPicture PlanPicture(const MappingOptions& options, const std::filesystem::path& path,
                           const PX::VideoFrameRef& frame, const Mapper::ContentLight& light,
                           float fileWhiteNits) {
  auto device = RequireDevice(options.device);
  const ColorDescription told = frame->GetColorSpace().Description();
  RefuseGammaOfFloats(path, told, frame->GetPixelFormat() == orvmediatypes::kLinearFloatBGRA,
                      options.source);
  const Source source = Tagged(options, path, {told, light});
  const int white = options.settings.white;
  TagPicture(frame, source.colors, fileWhiteNits, white);
  const auto exposure =
      ResolveExposure(options, path, source.colors, [&] { return LogAverageNits(frame, white); });
  const SourcePeak peak = ChooseSourcePeak(
      options.peak, path, source, PictureKind::Still, white,
      [&] { return MeasureLightLevels(frame, white, options.peak.percent).steadyPeakNits; });
  const double factor = exposure ? exposure->Factor() : 1.0;
  const PX::VideoFrameRef floats = ConvertToFloat(
      ScaleLight(frame, factor, white),
      Mapper::MappingColorSpace(source.colors, options.target, options.settings), white);
  return {PlanTagged(options, source, peak, factor, std::move(device)), floats, exposure};
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
