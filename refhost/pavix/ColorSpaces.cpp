#include "host/pavix/ColorSpaces.h"

#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace PX::ColorSpaces {

const ColorSpace& OR2100PQ() {
  static const ColorSpace kColorSpace = [] {
    ColorDescription description;
    description.primaries = H273::kPrimariesBT2020;
    description.transfer = H273::kTransferPQ;
    description.matrix = H273::kMatrixIdentity;
    description.fullRange = true;
    return ColorSpace(description);
  }();
  return kColorSpace;
}

}  // namespace PX::ColorSpaces
