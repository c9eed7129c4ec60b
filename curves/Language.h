#pragma once

// What lets one text of a curve be compiled as C++, as CUDA C++ and as OpenCL C 1.2, for one float
// or for a vector of them.
//
// A function marked QUILLON_CURVE works on `Real`, one marked QUILLON_WIDE_CURVE on `Wide`: in
// OpenCL C a float and a double; in C++ and CUDA C++ template arguments, a float and a double or
// vector types of the compiler's with as many lanes. Such a function chooses by `?:` and may skip
// work only where AnyOf or AllOf say that no lane needs it, so that every lane sees the same
// operations, each rounded as IEEE 754 says, whatever stands beside it. Where the work is about as
// short as a branch that was guessed wrong, IsWorthSkipping stands for AllOf, and may be false. A
// vector type needs AnyOf, AllOf, IsWorthSkipping, Uniform, Widen, Narrow and LookUp of its own
// where curves call them, declared before the curves are included.
//
// Literals for the bits of a double end in U alone, which is as wide as the number needs in all
// three languages; ULL is none of OpenCL C 1.2's.

// A compiler that would round otherwise is refused. What contracts shows in no macro: the build
// says with QUILLON_CONTRACTION_OFF that it has turned it off, where the processor could do it.
// (What CUDA's compilers do is read from their PTX.)
#if defined(__FAST_MATH__) || defined(__FAST_RELAXED_MATH__) || defined(__ASSOCIATIVE_MATH__) || \
    defined(__RECIPROCAL_MATH__) || defined(__NO_SIGNED_ZEROS__)
#error "Curves are exact: build them without fast-math."
#elif defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__
#error "Curves know NaN and infinity: build them without -ffinite-math-only."
#elif defined(__FLT_EVAL_METHOD__) && __FLT_EVAL_METHOD__ != 0
#error "Curves round every float: build them for a processor that evaluates floats as floats."
#endif
#if (defined(__FP_FAST_FMA) || defined(__FMA__) || defined(__ARM_FEATURE_FMA)) && \
    !defined(__CUDACC__) && !defined(__CUDA__) && !defined(__OPENCL_VERSION__) && \
    !defined(QUILLON_CONTRACTION_OFF)
#error "Curves round every product: build them with -ffp-contract=off -DQUILLON_CONTRACTION_OFF."
#endif

#if defined(__OPENCL_VERSION__)

#pragma OPENCL FP_CONTRACT OFF
#pragma OPENCL EXTENSION cl_khr_fp64 : enable

typedef float Real;
typedef double Wide;
#define QUILLON_CURVE static inline
#define QUILLON_WIDE_CURVE static inline
#define QUILLON_FUNCTION static inline
#define QUILLON_BITS uint
#define QUILLON_WIDE_BITS ulong
#define QUILLON_MASK int
#define QUILLON_WIDE double
#define QUILLON_INFINITY INFINITY
#define QUILLON_NAN NAN

#define BitsOf(x) as_uint(x)
#define RealOf(bits, like) as_float(bits)
#define WideBitsOf(x) as_ulong(x)
#define WideOf(bits, like) as_double(bits)
#define Uniform(value, like) (value)
#define Widen(x) ((double)(x))
#define Narrow(x, like) ((float)(x))
#define AnyOf(mask) (mask)
#define AllOf(mask) (mask)
#define IsWorthSkipping(mask) (mask)
#define QUILLON_TABLE __global const float*
#define LookUp(table, index, like) ((table)[index])

#else

#if defined(__CUDACC__) || defined(__CUDA__)
#define QUILLON_FUNCTION __host__ __device__ static inline
#else
#define QUILLON_FUNCTION static inline
#endif
#define QUILLON_CURVE   \
  template <class Real> \
  QUILLON_FUNCTION
#define QUILLON_WIDE_CURVE \
  template <class Wide>    \
  QUILLON_FUNCTION
#define QUILLON_BITS typename LaneTypes<Real>::Bits
#define QUILLON_WIDE_BITS typename LaneTypes<Wide>::Bits
#define QUILLON_MASK typename LaneTypes<Real>::Mask
#define QUILLON_WIDE typename LaneTypes<Real>::Wide
#define QUILLON_INFINITY __builtin_inff()
#define QUILLON_NAN __builtin_nanf("")

/// What belongs to a type of lanes: the unsigned integers as wide as it, what its comparisons give,
/// and for floats the doubles with as many lanes.
template <class Lanes>
struct LaneTypes;
template <>
struct LaneTypes<float> {
  using Bits = unsigned;
  using Mask = bool;
  using Wide = double;
};
template <>
struct LaneTypes<double> {
  using Bits = unsigned long long;
};

QUILLON_CURVE QUILLON_BITS BitsOf(Real x) { return __builtin_bit_cast(QUILLON_BITS, x); }
QUILLON_WIDE_CURVE QUILLON_WIDE_BITS WideBitsOf(Wide x) {
  return __builtin_bit_cast(QUILLON_WIDE_BITS, x);
}

/// The value of the type of `like` that has these bits.
QUILLON_CURVE Real RealOf(QUILLON_BITS bits, Real /*like*/) {
  return __builtin_bit_cast(Real, bits);
}
QUILLON_WIDE_CURVE Wide WideOf(QUILLON_WIDE_BITS bits, Wide /*like*/) {
  return __builtin_bit_cast(Wide, bits);
}

/// One value in every lane of a Real of the type of `like`.
QUILLON_FUNCTION float Uniform(float value, float /*like*/) { return value; }

/// To double precision, exactly, and back to the type of `like`, rounded to nearest.
QUILLON_FUNCTION double Widen(float x) { return x; }
QUILLON_FUNCTION float Narrow(double x, float /*like*/) { return static_cast<float>(x); }

QUILLON_FUNCTION bool AnyOf(bool mask) { return mask; }
QUILLON_FUNCTION bool AllOf(bool mask) { return mask; }
QUILLON_FUNCTION bool IsWorthSkipping(bool mask) { return mask; }

/// Memory that curves read tables from, and an entry of a table for every lane.
#define QUILLON_TABLE const float*
QUILLON_FUNCTION float LookUp(const float* table, unsigned index, float /*like*/) {
  return table[index];
}

#endif
