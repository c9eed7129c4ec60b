#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "host/orvmediatypes/AlgorithmTypes.h"
#include "host/orvmediatypes/ColorSpace.h"
#include "tools/quillon/DeviceChoice.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/map/ClipOptions.h"

/// Where the source peak comes from.
enum class PeakSource { Default, Number, Metadata, Measure, Scenes };

/// What `quillon map` was asked for, each value checked on its own.
struct MapOptions {
  std::filesystem::path input;
  std::filesystem::path output;
  orvmediatypes::color::ColorDescription destination;
  /// Overrides the input's own tags; range and chroma location stay those of the input.
  std::optional<orvmediatypes::color::ColorDescription> source;
  /// Whether `source` tells the YCbCr matrix too; else the input's own matrix stays.
  bool sourceTellsMatrix = false;
  PeakSource peakSource = PeakSource::Default;
  double peakNits = 0.0;  ///< where `peakSource` is `Number`
  std::optional<int> targetPeakNits;
  int white = 203;
  orvmediatypes::color::ToneMapAlgorithmType algorithm =
      orvmediatypes::color::ToneMapAlgorithmType::Automatic;
  orvmediatypes::color::GamutCompressionAlgorithmType gamut =
      orvmediatypes::color::GamutCompressionAlgorithmType::None;
  std::optional<float> knee;
  std::optional<float> gain;
  std::optional<float> colorPreservation;
  std::optional<int> depth;
  DeviceChoice device;
  std::optional<int> threads;
  std::int64_t maxPixels = kDefaultMaxPixels;  ///< of a picture that is read
  bool explain = false;
  bool overwrite = false;
  bool quiet = false;
  ClipOptions clip;
};

/// Whether the algorithm's curve reads the knee.
bool HasKnee(orvmediatypes::color::ToneMapAlgorithmType algorithm);

/// Refuses combinations in which an option would have no effect or no meaning. Throws CommandError.
void CheckMapOptions(const MapOptions& options);

/// The same for what clips and sequences have besides.
void CheckClipOptions(const MapOptions& options);

/// The same for a still, which options for clips have no effect on.
void CheckStillOptions(const MapOptions& options);
