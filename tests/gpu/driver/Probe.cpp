// Initialises the driver in a fresh process, and once more after `mv FROM TO` where two more
// arguments are given, or from the library of a path where one is; prints each result, and after it
// the entry points that are null, and those that are not null and not what they were before.

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>

#include "gpu/CudaDriver.h"

namespace {

void Print(const char* name, FARPROC pointer) {
  static std::map<std::string, FARPROC> before;
  const auto [known, isNew] = before.emplace(name, pointer);
  if (pointer == nullptr) std::printf("null %s\n", name);
  if (pointer != nullptr && !isNew && pointer != known->second) std::printf("moved %s\n", name);
}

void InitAndPrint() {
  std::printf("result %u\n", Quillon::InitCudaDriver(5));
  if (Quillon::cuInit == nullptr) std::puts("null cuInit");
#define QUILLON_CUDA_REQUIRED(name) Print(#name, Quillon::name);
#define QUILLON_CUDA_OPTIONAL(name) QUILLON_CUDA_REQUIRED(name)
#include "gpu/CudaDriverEntryPoints.inc"
}

}  // namespace

int main(int argc, char** argv) {
  InitAndPrint();
  if (argc == 3) std::filesystem::rename(argv[1], argv[2]);
  const std::wstring other = argc == 2 ? std::filesystem::path(argv[1]).wstring() : L"";
  if (argc == 2) Quillon::cudaDriverLibraryName = other.c_str();
  if (argc > 1) InitAndPrint();
  return 0;
}
