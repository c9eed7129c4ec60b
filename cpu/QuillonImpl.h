#pragma once

#include <functional>

#include "base/SupportVector.h"
#include "cpu/GamutCompression.h"
#include "host/pavix/GamutMappingUtils.h"
#include "host/pavix/IVideoFrame.h"
#include "tonemap/Algorithms.h"

namespace Quillon {

/// The CPU engine. Holds no state: one object serves one call.
class QuillonImpl {
 public:
  /// Maps the destination frame in place. Source and destination are frames of one size, both
  /// linear float BGRA; only the destination's pixels are read and written.
  /// 0xA00F000E: formats or bounds differ, or a pixel pointer is null. 0xA00F000C: not linear
  /// float BGRA. Else the result of `GenerateGamutMappedFrame`.
  int GenerateToneMappedFrame(const PX::VideoFrameRef& source,
                              const PX::GamutMappingUtils::GamutMappingSettings& settings,
                              const PX::VideoFrameRef& destination);

  /// Maps raw pixels in place, in up to 16 bands of rows that run in parallel. Strides are in
  /// floats. The source pointer and stride are accepted and not looked at. 0; 0xA00F000C: an
  /// algorithm is not implemented; 0xA00F000F: its parameters are degenerate or incomplete. No
  /// pixel is touched on failure.
  int GenerateGamutMappedFrame(float* source, float* destination, int height, int width,
                               int sourceStride, int destinationStride,
                               const PX::GamutMappingUtils::GamutMappingSettings& settings);

  /// Maps one band: on each pixel first the gamut compression, then the tone curve; an empty
  /// function is left out.
  void GenerateGamutMappedRows(ToneMapPixelFunction toneMap,
                               GamutCompressionPixelFunction compressGamut, float* pixel,
                               const int& rowCount, const int& rowStride, float width,
                               const SupportVector& toneMapParams, const SupportVector& gamutParams,
                               const PX::GamutMappingUtils::GamutMappingSettings& settings);
};

}  // namespace Quillon
