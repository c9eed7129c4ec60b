#pragma once

#include <vector>

#include "host/orvcore/Allocator.h"

namespace Quillon {

/// Parameters of one curve for one frame; what each entry means is said where the vector is built.
using SupportVector = std::vector<float, orvcore::allocator::STLAllocator<float>>;

}  // namespace Quillon
