#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mapper/Device.h"
#include "mapper/Mapping.h"
#include "mapper/Picture.h"
#include "mapper/Result.h"

namespace Quillon {
namespace [[gnu::visibility("default")]] Mapper {

/// What a plan's tone map is, after the automatic choice.
struct ToneMapDecision {
  struct Parameter {
    std::string name;  ///< with its unit: "source peak (PQ)"
    float value = 0.0F;
  };

  Algorithm algorithm = Algorithm::None;
  std::string name;  ///< for people: "ITU-R BT.2446 A"
  bool chosenAutomatically = false;
  /// Share of the destination's peak; nothing for curves that have no such dial.
  std::optional<float> knee;
  /// The source's peak in the curve's own scale.
  float adjustedPeak = 0.0F;
  /// What the curve reads for every pixel.
  std::vector<Parameter> parameters;
  /// Luminance at which the curve leaves the straight line, gain applied; nothing for curves that
  /// leave it at once.
  std::optional<double> kneeNits;
};

/// All that a plan settled.
struct Decisions {
  ColorDescription source;       ///< as the caller described it
  ColorDescription mappedFrom;   ///< what the engine works from
  ColorDescription destination;  ///< with its peak where one was given
  std::string device;            ///< "cpu", "opencl:0"
  Settings settings;             ///< as the caller gave them
  float gain = 0.0F;             ///< those of the settings, or what stands for them
  float colorPreservation = 0.0F;
  SourcePeak sourcePeak;
  /// What the curve takes for it: the same, but for BT.2446 A at most 10000.
  double curvePeakNits = 0.0;
  float sourcePeakSignal = 0.0F;  ///< that as a signal of `mappedFrom`
  double destinationPeakNits = 0.0;
  std::string gamut;          ///< for people; "None" where none was asked for
  bool gamutApplies = false;  ///< the source's gamut reaches beyond the destination's
  bool fitApplies = false;    ///< so it does, and `Settings::fit` is not `Clip`
  /// Nothing where none was asked for, or where the source's peak, with its gain, is not above the
  /// destination's.
  std::optional<ToneMapDecision> toneMap;
};

/// How pictures of one kind are mapped: resolved once, applied to any number of them. A plan never
/// changes; copies are cheap and share what they hold. Any number of threads may use one plan at
/// the same time.
///
/// The same plan gives the same bits on every processor, with every number of threads, whole or by
/// rows, and on every device that is exact.
class Plan {
 public:
  /// A plan for a source whose peak is what its metadata says, else what its transfer stands for.
  /// `UnknownPeak` for scene-linear light without metadata; `UnknownColors` for a source that does
  /// not tell its colours; `NotSupported` for colours that cannot be converted, and for a peak that
  /// the source's signal cannot express. `device` null: on the processor.
  static Result<Plan> Make(const Source& source, const Target& target, const Settings& settings,
                           std::shared_ptr<Device> device = nullptr);
  /// The same with a peak that is known better. `nits` is above 0; what is not is taken as it is,
  /// and the engine may refuse it.
  static Result<Plan> Make(const Source& source, const Target& target, const Settings& settings,
                           const SourcePeak& peak, std::shared_ptr<Device> device = nullptr);

  /// The plan with another peak, of the same origin. Quick: for scenes of a clip.
  Result<Plan> WithPeak(double nits) const;

  Decisions Decide() const;

  /// Maps a picture of the source's colours into memory of the caller, in the target's colours.
  /// Both have the same size; formats are each as the caller wishes. They share no memory, or are
  /// the same picture of float BGRA. Alpha is passed on where both have it, else 1. Synchronous.
  ///
  /// `InvalidArgument` for a picture that cannot be one (before anything is written);
  /// `NotSupported` for one that cannot be converted; `EngineRefused`. After a failure the
  /// destination may hold anything.
  Failure Map(const ConstPicture& source, const Picture& destination) const;

  /// The same for rows from `first` to before `last` of the destination alone, to the bit as `Map`
  /// writes them; both pictures are given whole. Where the destination's chroma has half as many
  /// rows, `first` is even, and `last` is even or the height. Threads may map rows of one picture
  /// at the same time. Up to 32 rows of a source with fewer chroma rows are read and mapped
  /// besides, since chroma is interpolated.
  Failure MapRows(const ConstPicture& source, const Picture& destination, int first,
                  int last) const;

  /// What the library keeps of it; not part of the interface.
  struct Content;
  const Content& Inside() const { return *content_; }

 private:
  explicit Plan(std::shared_ptr<const Content> content) : content_(std::move(content)) {}
  std::shared_ptr<const Content> content_;
};

}  // namespace Mapper
}  // namespace Quillon
