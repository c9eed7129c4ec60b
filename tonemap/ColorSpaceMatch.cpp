#include "tonemap/ColorSpaceMatch.h"

#include "host/chromant/Conversion.h"
#include "host/pavix/ColorSpaces.h"

namespace Quillon {

bool MatchesBT2100PQ(const orvmediatypes::color::ColorSpace& colorSpace) {
  constexpr int kIgnoreLuminanceMetadata = 2;
  return CHR::AreColorSpacesEquivalent(colorSpace, orvmediatypes::kLinearFloatBGRA,
                                       PX::ColorSpaces::OR2100PQ(), orvmediatypes::kLinearFloatBGRA,
                                       kIgnoreLuminanceMetadata);
}

}  // namespace Quillon
