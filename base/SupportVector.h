#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/orvcore/Allocator.h"

namespace Quillon {

/// Parameters of one curve for one frame. What its entries are, the curve's header says.
using SupportVector = std::vector<float, orvcore::allocator::STLAllocator<float>>;

/// What a number is given in.
enum class Unit : std::uint8_t {
  None,    ///< weights, coefficients, factors
  Linear,  ///< linear light, 1.0 at reference white
  Nits,
  PQCode,   ///< PQ code value, 0 to 1
  PQShare,  ///< share of the source's range of PQ code values
};

/// One entry of a support vector.
struct ParamEntry {
  std::string_view id;    ///< as a kernel calls the argument
  std::string_view name;  ///< for people, without the unit
  Unit unit = Unit::None;
};

}  // namespace Quillon
