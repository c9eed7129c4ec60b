// A kernel Run<name> for every call of a curve: items lie one after another, as many numbers each
// as the call takes and gives.

#include "tests/curves/CurveCalls.h"

#define QUILLON_CURVE_CALL(name, Number, ins, outs)                          \
  __kernel void Run##name(__global const Number* in, __global Number* out) { \
    const size_t item = get_global_id(0);                                    \
    Number numbers[ins];                                                     \
    Number results[outs];                                                    \
    for (int i = 0; i < ins; ++i) numbers[i] = in[item * ins + i];           \
    Call##name(numbers, results);                                            \
    for (int i = 0; i < outs; ++i) out[item * outs + i] = results[i];        \
  }
#include "tests/curves/CurveCalls.inc"
