#pragma once

// What nvcc's own headers declare, as far as the kernels need it, for Clang without them.

#define __host__ __attribute__((host))
#define __device__ __attribute__((device))
#define __global__ __attribute__((global))

#include <cmath>

struct ClangCudaIndex {
  __device__ ClangCudaIndex(int column, int row)
      : x(static_cast<unsigned>(column)), y(static_cast<unsigned>(row)) {}
  unsigned x, y;
};
#define threadIdx ClangCudaIndex(__nvvm_read_ptx_sreg_tid_x(), __nvvm_read_ptx_sreg_tid_y())
#define blockIdx ClangCudaIndex(__nvvm_read_ptx_sreg_ctaid_x(), __nvvm_read_ptx_sreg_ctaid_y())
#define blockDim ClangCudaIndex(__nvvm_read_ptx_sreg_ntid_x(), __nvvm_read_ptx_sreg_ntid_y())

static __device__ inline double sqrt(double x) { return __nvvm_sqrt_rn_d(x); }
