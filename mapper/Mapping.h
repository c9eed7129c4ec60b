#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/orvmediatypes/AlgorithmTypes.h"
#include "mapper/Colors.h"

namespace Quillon {
namespace [[gnu::visibility("default")]] Mapper {

using Algorithm = orvmediatypes::color::ToneMapAlgorithmType;
using GamutAlgorithm = orvmediatypes::color::GamutCompressionAlgorithmType;

/// A value that people know by a name.
template <class Value>
struct Named {
  std::string_view name;
  Value value;
};

/// All tone-map algorithms by the names of options: "auto", the curves, "none".
std::span<const Named<Algorithm>> Algorithms();
/// The same of gamut compression: "none" and the curves.
std::span<const Named<GamutAlgorithm>> GamutAlgorithms();

/// The name of an algorithm; empty for a value that has none.
std::string_view AlgorithmName(Algorithm algorithm);

/// Content light levels (CTA-861.3) in nits; 0: not given.
struct ContentLight {
  float maxCLL = 0.0F;
  float maxFALL = 0.0F;
  friend bool operator==(const ContentLight&, const ContentLight&) = default;
};

/// What is known of the pictures that come in.
struct Source {
  /// Primaries and transfer must be told; matrix, range and chroma location are those of the
  /// samples. May hold the mastering display.
  ColorDescription colors{};
  ContentLight light{};
};

/// What goes out.
struct Target {
  ColorDescription colors{};
  /// Peak of a PQ or HLG display in nits, 1 to 10000. Nothing: 10000 for PQ, 1000 for HLG. Of no
  /// effect on other transfers, whose 1.0 is `Settings::white`.
  std::optional<int> peakNits{};
};

/// What becomes of colours that the target's gamut has not.
enum class GamutFitting {
  Clip,  ///< each channel ends where the target's ends: hues shift
  Hue,  ///< chroma is reduced at constant hue and intensity in ITP (ITU-R BT.2124), softly from 0.9
        ///< of the way to the target's boundary on
};

/// How it is mapped.
struct Settings {
  Algorithm algorithm = Algorithm::Automatic;
  GamutAlgorithm gamut = GamutAlgorithm::None;
  /// Where the curve leaves the straight line, 0 to 1 of the destination's peak. Nothing: 0.5.
  /// Of effect on curves with a knee (`HasKnee`).
  std::optional<float> knee{};
  /// Factor on the picture before the curve, above 0. Nothing: 1.
  std::optional<float> gain{};
  /// 0 lets highlights go to white, 1 keeps their hue and saturation. Nothing: 0.95.
  std::optional<float> colorPreservation{};
  /// Of effect where the source's gamut reaches beyond the target's. Nothing: `Hue` for pictures of
  /// integers; floats keep what lies beyond the gamut, as they do with `Clip`.
  std::optional<GamutFitting> fit{};
  /// Luminance in nits of graphics white (ITU-R BT.2408), which 1.0 in linear light and of an SDR
  /// signal is; 1 to 10000.
  int white = 203;
};

/// What each fitting is called in options: "hue", "clip".
std::span<const Named<GamutFitting>> GamutFittings();

/// Whether the algorithm's curve reads `Settings::knee`.
bool HasKnee(Algorithm algorithm);

/// The peak that is mapped from, and how it was come by.
struct SourcePeak {
  double nits = 0.0;
  std::string origin;  ///< for people: "MaxCLL of the file", "measured"
};

/// A source without the light levels that cannot be.
struct BelievedSource {
  Source source;
  /// What was left out, for people: "a mastering display of 0.1 nits (less than 50)".
  std::vector<std::string> ignored;
};

/// Leaves out a mastering display whose maximum is below 50 nits or below MaxFALL, and a MaxCLL
/// below MaxFALL.
BelievedSource BelieveLight(const Source& source);

/// MaxCLL, else the mastering display's maximum, as far as they are believed; nothing where neither
/// is given.
std::optional<SourcePeak> MetadataPeak(const Source& source);

/// What the transfer stands for where nothing else is known: 10000 nits for PQ, 1000 or the peak of
/// its display for HLG (its maximum believed), `white` for SDR. Nothing for scene-linear light,
/// which has no end.
std::optional<SourcePeak> NominalPeak(const ColorDescription& colors, int white);

}  // namespace Mapper
}  // namespace Quillon
