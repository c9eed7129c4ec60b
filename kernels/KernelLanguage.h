#pragma once

// What lets one text of a kernel be compiled as OpenCL C 1.2 and as CUDA C++.
//
// A frame is one argument to whoever launches. In OpenCL C, where memory has no address outside the
// device, it becomes two: the memory, and the descriptor, whose pointer means nothing there.

#include "curves/Language.h"
#include "host/ironlane/GPUFrameDescriptor.h"

#if defined(__OPENCL_VERSION__)

#define QUILLON_KERNEL __kernel void
#define QUILLON_GLOBAL __global
#define QUILLON_ALIGNED(bytes) __attribute__((aligned(bytes)))
#define QUILLON_FRAME(name) __global void *name##Pixels, const GPUFrameDescriptor name
#define QUILLON_PIXELS(name) name##Pixels
#define QUILLON_COLUMN ((unsigned)get_global_id(0))
#define QUILLON_ROW ((unsigned)get_global_id(1))
typedef ulong FrameSize;

#else

#define QUILLON_KERNEL extern "C" __global__ void
#define QUILLON_GLOBAL
#define QUILLON_ALIGNED(bytes) __attribute__((aligned(bytes)))
#define QUILLON_FRAME(name) const GPUFrameDescriptor name
#define QUILLON_PIXELS(name) ((void*)(name).devicePointer)
#define QUILLON_COLUMN (blockIdx.x * blockDim.x + threadIdx.x)
#define QUILLON_ROW (blockIdx.y * blockDim.y + threadIdx.y)
typedef unsigned long long FrameSize;
using Quillon::GPUFrameDescriptor;

#endif
