#include "host/pavix/ColorSpaces.h"

#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace PX::ColorSpaces {

const ColorSpace& OR2100PQ() {
  static const ColorSpace kColorSpace = [] {
    ColorDescription description;
    description.primaries = RefHost::kPrimariesBT2020;
    description.transfer = RefHost::kTransferPQ;
    description.matrix = RefHost::kMatrixIdentity;
    description.fullRange = true;
    return ColorSpace(description);
  }();
  return kColorSpace;
}

}  // namespace PX::ColorSpaces
