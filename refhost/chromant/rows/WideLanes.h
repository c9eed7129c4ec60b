#pragma once

// Vectors of doubles as wide as the instruction set that the including file is built for has
// registers, and of as many floats.
//
// Included by the files of one instruction set only, before any curve. Everything is local to the
// file: nothing that is built for one processor may be linked into code for another.

#if defined(__SSE2__)
#include <immintrin.h>
#endif

#include <cstddef>

#include "curves/Language.h"

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

template <class Vector, class Element>
Vector Load(const Element* from) {
  Vector vector;
  __builtin_memcpy(&vector, from, sizeof vector);
  return vector;
}

template <class Vector, class Element>
void Store(Element* to, Vector vector) {
  __builtin_memcpy(to, &vector, sizeof vector);
}

WideLanes LoadWidened(const float* from) {
#if defined(__AVX512F__)
  // The masked form, all lanes in: GCC 12 warns of the plain one's own undefined register.
  return __builtin_bit_cast(WideLanes, _mm512_maskz_cvtps_pd(0xff, _mm256_loadu_ps(from)));
#else
  return __builtin_convertvector(Load<FloatLanes>(from), WideLanes);
#endif
}

void StoreNarrowed(float* to, WideLanes x) { Store(to, __builtin_convertvector(x, FloatLanes)); }

}  // namespace

template <>
struct LaneTypes<WideLanes> {
  using Bits = WideBits;
};
