#pragma once

// The descriptor is part of the host contract, which kernels read too.
#include "host/ironlane/GPUFrameDescriptor.h"
