#include "host/pavix/GamutMappingUtils.h"

using orvmediatypes::color::GamutCompressionAlgorithmType;

namespace PX::GamutMappingUtils {

std::string GetGamutCompressionMethodName(GamutCompressionAlgorithmType algorithmType,
                                          int /*form*/) {
  switch (algorithmType) {
    case GamutCompressionAlgorithmType::None:
      return "None";
    case GamutCompressionAlgorithmType::Reinhard:
      return "Reinhard";
    case GamutCompressionAlgorithmType::Desaturation:
      return "Desaturation";
    default:
      return "Unknown gamut-compression method " + std::to_string(static_cast<int>(algorithmType));
  }
}

}  // namespace PX::GamutMappingUtils
