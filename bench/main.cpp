#include <iostream>

#include <benchmark/benchmark.h>

#include "bench/Table.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  Table table(std::cout);
  const auto count = benchmark::RunSpecifiedBenchmarks(&table);
  benchmark::Shutdown();
  return count == 0 ? 1 : 0;
}
