#pragma once

#include <cstdint>

namespace RefHost {

/// A number that no device of this process had before; never 0.
std::uint64_t NewContextIdentity();

}  // namespace RefHost
