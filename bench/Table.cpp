#include "bench/Table.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace {

std::string Fixed(double value) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(2) << value;
  return text.str();
}

/// A counter as text; empty where the benchmark has none of that name.
std::string CounterOf(const benchmark::BenchmarkReporter::Run& run, const std::string& name) {
  const auto counter = run.counters.find(name);
  return counter == run.counters.end() ? "" : Fixed(counter->second.value);
}

}  // namespace

bool Table::ReportContext(const Context& context) {
  cores_ = static_cast<std::size_t>(context.cpu_info.num_cpus);
  rows_ = {{"3840x2160", "ns/pixel", "floor", "to floor", "to pixel form"}};
  return true;
}

void Table::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    const std::string name =
        run.run_name.function_name + (run.run_name.args.empty() ? "" : '/' + run.run_name.args);
    if (run.error_occurred) {
      std::cerr << name << ": " << run.error_message << '\n';
      continue;
    }
    std::cerr << name << '\n';
    rows_.push_back({name, CounterOf(run, "ns/pixel"), CounterOf(run, "floor_ns/pixel"),
                     CounterOf(run, "to_floor"), CounterOf(run, "to_pixel_form")});
  }
}

void Table::Finalize() {
  std::vector<std::size_t> widths(rows_.front().size());
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  out_ << cores_
       << " cores. Medians; floor: reading and writing the frame once, in the same run.\n";
  for (const auto& row : rows_) {
    out_ << std::left << std::setw(static_cast<int>(widths[0])) << row[0] << std::right;
    for (std::size_t i = 1; i < row.size(); ++i) {
      out_ << "  " << std::setw(static_cast<int>(widths[i])) << row[i];
    }
    out_ << '\n';
  }
}
