#pragma once

// Vectors to and from memory, and floats to doubles, for the vectors of any user.
//
// Included by the files of one instruction set only, before any curve. Everything is local to the
// file: nothing that is built for one processor may be linked into code for another.

#if defined(__SSE2__)
#include <immintrin.h>
#endif

#include "curves/Language.h"

namespace {

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

/// A vector of floats as one of as many doubles.
template <class Doubles, class Floats>
[[gnu::always_inline]] inline Doubles WidenLanes(Floats x) {
#if defined(__AVX512F__)
  static_assert(sizeof(Doubles) == sizeof(__m512d) && sizeof(Floats) == sizeof(__m256));
  // The masked form, all lanes in: GCC 12 warns of the plain one's own undefined register.
  return __builtin_bit_cast(Doubles, _mm512_maskz_cvtps_pd(0xff, __builtin_bit_cast(__m256, x)));
#else
  return __builtin_convertvector(x, Doubles);
#endif
}

}  // namespace
