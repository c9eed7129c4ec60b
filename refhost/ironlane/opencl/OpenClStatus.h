#pragma once

#include <string_view>

#include "refhost/ironlane/opencl/OpenCl.h"

namespace RefHost {

/// 0, or one of this library's codes, and a message to the trace that names what failed.
int ResultOf(cl_int status, std::string_view what);

}  // namespace RefHost
