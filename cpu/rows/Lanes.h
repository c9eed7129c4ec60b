#pragma once

// Vectors as wide as the instruction set that the including file is built for has registers, with
// the operations that curves/Language.h asks of them.
//
// Included by the files of one instruction set only, before any curve. Everything is local to the
// file: nothing that is built for one processor may be linked into code for another.

#include "curves/lanes/Vectors.h"

namespace {

/// Floats in a register, and floats at a time where powers are taken, in double precision.
#if defined(__AVX512F__)
constexpr int kLanes = 16;
constexpr int kPowerLanes = 8;
#elif defined(__AVX2__)
constexpr int kLanes = 8;
constexpr int kPowerLanes = 4;
#else
constexpr int kLanes = 4;
constexpr int kPowerLanes = 4;
#endif

using Lanes __attribute__((vector_size(kLanes * sizeof(float)))) = float;
using LaneInts __attribute__((vector_size(kLanes * sizeof(int)))) = int;
using LaneBits __attribute__((vector_size(kLanes * sizeof(int)))) = unsigned;

using PowerLanes __attribute__((vector_size(kPowerLanes * sizeof(float)))) = float;
using PowerInts __attribute__((vector_size(kPowerLanes * sizeof(int)))) = int;
using PowerBits __attribute__((vector_size(kPowerLanes * sizeof(int)))) = unsigned;

using WideLanes __attribute__((vector_size(kPowerLanes * sizeof(double)))) = double;
using WideBits __attribute__((vector_size(kPowerLanes * sizeof(double)))) = unsigned long long;

}  // namespace

template <>
struct LaneTypes<PowerLanes> {
  using Bits = PowerBits;
  using Mask = PowerInts;
  using Wide = WideLanes;
};
template <>
struct LaneTypes<WideLanes> {
  using Bits = WideBits;
};

static inline PowerLanes Uniform(float value, PowerLanes /*like*/) { return value - PowerLanes{}; }
static inline PowerLanes Narrow(WideLanes x, PowerLanes /*like*/) {
  return __builtin_convertvector(x, PowerLanes);
}
static inline WideLanes Widen(PowerLanes x) { return WidenLanes<WideLanes>(x); }

/// One bit a lane.
static inline int MaskBits(LaneInts mask) {
#if defined(__AVX512F__)
  return _mm512_movepi32_mask(__builtin_bit_cast(__m512i, mask));
#elif defined(__AVX2__)
  return _mm256_movemask_ps(__builtin_bit_cast(__m256, mask));
#elif defined(__SSE2__)
  return _mm_movemask_ps(__builtin_bit_cast(__m128, mask));
#else
  return (mask[0] & 1) | (mask[1] & 2) | (mask[2] & 4) | (mask[3] & 8);
#endif
}
static inline bool AnyOf(LaneInts mask) { return MaskBits(mask) != 0; }
static inline bool AllOf(LaneInts mask) { return MaskBits(mask) == (1 << kLanes) - 1; }
static inline bool IsWorthSkipping(LaneInts mask) {
#if defined(__AVX512F__)
  return static_cast<void>(mask), false;
#else
  return AllOf(mask);
#endif
}

static inline Lanes LookUp(const float* table, LaneBits index, Lanes /*like*/) {
  Lanes entries;
  for (int lane = 0; lane < kLanes; ++lane) entries[lane] = table[index[lane]];
  return entries;
}

// Where powers are taken in vectors of their own kind, and where not.
#if defined(__AVX2__)

template <>
struct LaneTypes<Lanes> {
  using Bits = LaneBits;
  using Mask = LaneInts;
};
static inline Lanes Uniform(float value, Lanes /*like*/) { return value - Lanes{}; }

static inline int MaskBits(PowerInts mask) {
#if defined(__AVX512F__)
  return _mm256_movemask_ps(__builtin_bit_cast(__m256, mask));
#else
  return _mm_movemask_ps(__builtin_bit_cast(__m128, mask));
#endif
}
static inline bool AnyOf(PowerInts mask) { return MaskBits(mask) != 0; }
static inline bool AllOf(PowerInts mask) { return MaskBits(mask) == (1 << kPowerLanes) - 1; }

#endif

// The unpacking of registers, within each 128 bits: a0 b0 a1 b1, a2 b2 a3 b3, and the same for
// pairs of floats.

#if defined(__AVX512F__)

static inline Lanes UnpackLow(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 0, 16, 1, 17, 4, 20, 5, 21, 8, 24, 9, 25, 12, 28, 13, 29);
}
static inline Lanes UnpackHigh(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 2, 18, 3, 19, 6, 22, 7, 23, 10, 26, 11, 27, 14, 30, 15, 31);
}
static inline Lanes UnpackLowPairs(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 0, 1, 16, 17, 4, 5, 20, 21, 8, 9, 24, 25, 12, 13, 28, 29);
}
static inline Lanes UnpackHighPairs(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 2, 3, 18, 19, 6, 7, 22, 23, 10, 11, 26, 27, 14, 15, 30, 31);
}

#elif defined(__AVX2__)

static inline Lanes UnpackLow(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 0, 8, 1, 9, 4, 12, 5, 13);
}
static inline Lanes UnpackHigh(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 2, 10, 3, 11, 6, 14, 7, 15);
}
static inline Lanes UnpackLowPairs(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 0, 1, 8, 9, 4, 5, 12, 13);
}
static inline Lanes UnpackHighPairs(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 2, 3, 10, 11, 6, 7, 14, 15);
}

#else

static inline Lanes UnpackLow(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 0, 4, 1, 5);
}
static inline Lanes UnpackHigh(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 2, 6, 3, 7);
}
static inline Lanes UnpackLowPairs(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 0, 1, 4, 5);
}
static inline Lanes UnpackHighPairs(Lanes a, Lanes b) {
  return __builtin_shufflevector(a, b, 2, 3, 6, 7);
}

#endif
