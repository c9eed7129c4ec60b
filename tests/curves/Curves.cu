// A kernel Run<name> for every call of a curve: items lie one after another, as many numbers each
// as the call takes and gives.

#include "tests/curves/CurveCalls.h"

#define QUILLON_CURVE_CALL(name, Number, ins, outs)                                     \
  extern "C" __global__ void Run##name(const Number* in, Number* out, unsigned count) { \
    const unsigned item = blockIdx.x * blockDim.x + threadIdx.x;                        \
    if (item < count) Call##name(in + size_t(item) * ins, out + size_t(item) * outs);   \
  }
#include "tests/curves/CurveCalls.inc"
