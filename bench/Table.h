#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

/// Says on standard error what is running, and prints one table of all at the end: ns a pixel, the
/// ratio to reading and writing the same memory in the same run, and the ratio of a row form to its
/// pixel form.
class Table : public benchmark::BenchmarkReporter {
 public:
  explicit Table(std::ostream& out) : out_(out) {}

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  std::ostream& out_;
  std::size_t cores_ = 0;
  std::vector<std::vector<std::string>> rows_;
};
