#include "host/orvmediatypes/ToneMapControls.h"

namespace orvmediatypes::color {

std::int32_t ToneMapControls::GetVersion() const { return version; }

}  // namespace orvmediatypes::color
