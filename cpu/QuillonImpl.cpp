#include "cpu/QuillonImpl.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "base/DefaultFloatingPoint.h"
#include "base/ResultCodes.h"
#include "base/Trace.h"
#include "cpu/rows/RowForms.h"
#include "host/chromant/Applicability.h"
#include "host/orvcore/Threads.h"
#include "tonemap/SupportParams.h"

namespace Quillon {

using orvmediatypes::color::GamutCompressionAlgorithmType;
using PX::GamutMappingUtils::GamutMappingSettings;

namespace {

constexpr int kMaxBands = 16;

/// The steps of one frame: which functions run and on which parameters.
struct FrameSteps {
  ToneMapPixelFunction toneMap;
  GamutCompressionPixelFunction compressGamut;
  SupportVector toneMapParams;
  SupportVector gamutParams;
};

int PrepareGamutCompression(const GamutMappingSettings& settings, FrameSteps& steps) {
  if (!CHR::IsGamutCompressionApplicable(settings)) return kSuccess;
  if (GetGamutCompressionSupportParams(settings, steps.gamutParams) < 0) {
    TraceFailure(kEngineTraceCategory, [](auto& message) {
      message << "GenerateGamutMappedFrame : GetGamutCompressionSupportParams failed";
    });
    return kNotSupported;
  }
  if (settings.GamutCompressionSettings::algorithmType ==
      GamutCompressionAlgorithmType::Desaturation) {
    steps.compressGamut = GamutCompressionDesaturation{};
  } else if (GamutCompressionReinhard::HasLimit(steps.gamutParams)) {
    steps.compressGamut = GamutCompressionReinhard{};
  }
  return kSuccess;
}

/// May rewrite version, peak, algorithm and knee of the tone-map settings.
int PrepareToneMap(PX::ToneMappingUtils::ToneMapSettings& settings, FrameSteps& steps) {
  if (!CHR::IsToneMappingApplicable(settings)) return kSuccess;
  GetToneMappingSupportParams(settings, steps.toneMapParams);
  const ToneMapAlgorithm* algorithm = FindToneMapAlgorithm(settings.algorithmType);
  // Deliberate: without a message of its own.
  if (algorithm == nullptr) return kNotSupported;
  if (steps.toneMapParams.size() < algorithm->facts.entries.size()) return kDegenerateParameters;
  steps.toneMap =
      algorithm->bind != nullptr ? algorithm->bind(steps.toneMapParams) : algorithm->curve;
  return steps.toneMap ? kSuccess : kDegenerateParameters;
}

}  // namespace

// Deliberate: the source is accepted and not looked at.
int QuillonImpl::GenerateGamutMappedFrame(float* /*source*/, float* destination, int height,
                                          int width, int /*sourceStride*/, int destinationStride,
                                          const GamutMappingSettings& settings) {
  GamutMappingSettings working = settings;
  FrameSteps steps;
  int result = PrepareGamutCompression(settings, steps);
  if (result < 0) return result;
  result = PrepareToneMap(working.toneMapSettings, steps);
  if (result < 0) return result;

  const int bands = std::min(height, kMaxBands);
  // Deliberate: threads are asked for even where no step applies.
  const std::shared_ptr<orvcore::threads::AsyncThreadedSubExecutor> executor =
      orvcore::threads::CreateSubExecutor(orvcore::threads::CreateCPUBoundExecutor(), bands);
  if (!steps.toneMap && !steps.compressGamut) return kSuccess;

  const auto floatWidth = static_cast<float>(width);
  if (executor == nullptr) {
    // Deliberate: without threads the curves see the caller's own record, not the working copy.
    GenerateGamutMappedRows(steps.toneMap, steps.compressGamut, destination, height,
                            destinationStride, floatWidth, steps.toneMapParams, steps.gamutParams,
                            settings);
    return kSuccess;
  }

  const int rowsPerBand = height > bands ? height / bands : 1;
  for (int band = 0; band < bands; ++band) {
    const int rows = band + 1 < bands ? rowsPerBand : height - band * rowsPerBand;
    float* first =
        destination + std::ptrdiff_t{band} * rowsPerBand * std::ptrdiff_t{destinationStride};
    executor->Queue(
        [this, steps, first, rows, destinationStride, floatWidth, working]() mutable {
          GenerateGamutMappedRows(std::move(steps.toneMap), std::move(steps.compressGamut), first,
                                  rows, destinationStride, floatWidth, steps.toneMapParams,
                                  steps.gamutParams, working);
        },
        0);
  }
  // Deliberate: also where nothing was queued.
  executor->WaitForAll();
  return kSuccess;
}

// Deliberate: both functions by value, so that every band works on copies of its own.
// NOLINTBEGIN(performance-unnecessary-value-param)
void QuillonImpl::GenerateGamutMappedRows(ToneMapPixelFunction toneMap,
                                          GamutCompressionPixelFunction compressGamut, float* pixel,
                                          const int& rowCount, const int& /*rowStride*/,
                                          float width, const SupportVector& toneMapParams,
                                          const SupportVector& gamutParams,
                                          const GamutMappingSettings& settings) {
  // NOLINTEND(performance-unnecessary-value-param)
  const DefaultFloatingPoint mode;
  // Deliberate: rows are walked packed. The stride only places the first pixel of a band.
  if (MapRows(BestInstructionSet(), {toneMap, compressGamut, toneMapParams, gamutParams, settings},
              pixel, rowCount, width)) {
    return;
  }
  constexpr int kFloatsPerPixel = 4;
  for (int row = 0; row < rowCount; ++row) {
    for (int column = 0; width > static_cast<float>(column); ++column) {
      if (compressGamut) compressGamut(pixel, gamutParams, settings);
      if (toneMap) toneMap(pixel, toneMapParams, settings.toneMapSettings);
      pixel += kFloatsPerPixel;
    }
  }
}

}  // namespace Quillon
