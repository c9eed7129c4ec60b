#include "host/pavix/GamutMappingUtils.h"

#include "cpu/GamutCompression.h"

using orvmediatypes::color::GamutCompressionAlgorithmType;

namespace PX::GamutMappingUtils {

std::string GetGamutCompressionMethodName(GamutCompressionAlgorithmType algorithmType,
                                          int /*form*/) {
  if (algorithmType == GamutCompressionAlgorithmType::None) return "None";
  if (const auto* curve = Quillon::FindGamutCurve(algorithmType)) return std::string(curve->name);
  return "Unknown gamut-compression method " + std::to_string(static_cast<int>(algorithmType));
}

}  // namespace PX::GamutMappingUtils
