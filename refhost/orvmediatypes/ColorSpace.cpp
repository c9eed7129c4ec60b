#include "host/orvmediatypes/ColorSpace.h"

#include "refhost/orvmediatypes/H273.h"

namespace orvmediatypes::color {

ColorSpace::ColorSpace() = default;
ColorSpace::ColorSpace(const ColorDescription& description) : description_(description) {}
ColorSpace::ColorSpace(const ColorSpace& other) = default;
ColorSpace& ColorSpace::operator=(const ColorSpace& other) = default;
ColorSpace::~ColorSpace() = default;

bool ColorSpace::empty() const {
  return description_.primaries == 0 && description_.transfer == 0 && description_.matrix == 0;
}

bool ColorSpace::IsLinear() const { return description_.transfer == RefHost::kTransferLinear; }

const ColorDescription& ColorSpace::Description() const { return description_; }

}  // namespace orvmediatypes::color
