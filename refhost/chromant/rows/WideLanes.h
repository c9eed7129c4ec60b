#pragma once

// Vectors of doubles as wide as the instruction set that the including file is built for has
// registers, and of as many floats.
//
// Included by the files of one instruction set only, before any curve. Everything is local to the
// file: nothing that is built for one processor may be linked into code for another.

#include <cstddef>

#include "curves/lanes/Vectors.h"

namespace {

#if defined(__AVX512F__)
constexpr int kLanes = 8;
#elif defined(__AVX2__)
constexpr int kLanes = 4;
#else
constexpr int kLanes = 2;
#endif

using FloatLanes __attribute__((vector_size(kLanes * sizeof(float)))) = float;
using WideLanes __attribute__((vector_size(kLanes * sizeof(double)))) = double;
using WideBits __attribute__((vector_size(kLanes * sizeof(double)))) = unsigned long long;

WideLanes LoadWidened(const float* from) { return WidenLanes<WideLanes>(Load<FloatLanes>(from)); }

void StoreNarrowed(float* to, WideLanes x) { Store(to, __builtin_convertvector(x, FloatLanes)); }

}  // namespace

template <>
struct LaneTypes<WideLanes> {
  using Bits = WideBits;
};
