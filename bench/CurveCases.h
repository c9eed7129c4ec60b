#pragma once

#include <string>
#include <vector>

#include "base/SupportVector.h"
#include "cpu/GamutCompression.h"
#include "host/pavix/GamutMappingUtils.h"
#include "tonemap/Algorithms.h"

/// A gamut compression, a tone curve or both, with parameters for a picture by MakePicture.
struct CurveCase {
  std::string name;
  Quillon::ToneMapPixelFunction toneMap;
  Quillon::GamutCompressionPixelFunction compressGamut;
  Quillon::SupportVector toneMapParams;
  Quillon::SupportVector gamutParams;
  PX::GamutMappingUtils::GamutMappingSettings settings;
};

/// Every curve of the engine, and Reinhard with the hue-preserving curve in one sweep.
std::vector<CurveCase> CurveCases();

enum class Picture {
  Hdr,              ///< light inside the gamut
  NegativeChannels  ///< the same with a negative channel in one pixel of twenty, at random
};

/// BGRA pixels of a 4K picture, packed: light varies smoothly, log-normal, and lies above the
/// curves' knee, 0.5, in 30 % of the pixels; alpha 1.
std::vector<float> MakePicture(Picture kind);
