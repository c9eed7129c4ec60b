// Initialises the driver in a fresh process, and once more after `mv FROM TO` where two more
// arguments are given; prints each result, and after it the entry points that are null.

#include <cstdio>
#include <filesystem>

#include "gpu/CudaDriver.h"

namespace {

void InitAndPrint() {
  std::printf("result %u\n", Quillon::InitCudaDriver(5));
  if (Quillon::cuInit == nullptr) std::puts("null cuInit");
#define QUILLON_CUDA_REQUIRED(name) \
  if (Quillon::name == nullptr) std::puts("null " #name);
#define QUILLON_CUDA_OPTIONAL(name) QUILLON_CUDA_REQUIRED(name)
#include "gpu/CudaDriverEntryPoints.inc"
}

}  // namespace

int main(int argc, char** argv) {
  InitAndPrint();
  if (argc == 3) {
    std::filesystem::rename(argv[1], argv[2]);
    InitAndPrint();
  }
  return 0;
}
