#pragma once

#include "base/SupportVector.h"
#include "cpu/GamutCompression.h"
#include "curves/lanes/InstructionSet.h"
#include "host/pavix/GamutMappingUtils.h"
#include "tonemap/Algorithms.h"

namespace Quillon {

/// The functions of a band and what they are called with.
struct RowSteps {
  const ToneMapPixelFunction& toneMap;
  const GamutCompressionPixelFunction& compressGamut;
  const SupportVector& toneMapParams;
  const SupportVector& gamutParams;
  const PX::GamutMappingUtils::GamutMappingSettings& settings;
};

/// Maps a band of packed rows by the row forms of the engine's own functions, with the same bits as
/// pixel by pixel. False, with no pixel touched, when a function is not one of these, or is BT.2390
/// without tables for these parameters: then the functions are to be called. `set` must be one that
/// can run. Allocates nothing.
bool MapRows(InstructionSet set, const RowSteps& steps, float* pixels, int rowCount, float width);

}  // namespace Quillon
