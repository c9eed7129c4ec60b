#include <sstream>

#include <gtest/gtest.h>

#include "bench/Table.h"

namespace {

using Run = benchmark::BenchmarkReporter::Run;

Run MakeRun(const std::string& name,
            std::initializer_list<std::pair<const char*, double>> counters) {
  Run run;
  run.run_name.function_name = name;
  for (const auto& [counter, value] : counters) run.counters[counter] = value;
  return run;
}

std::string Print(const std::vector<Run>& runs) {
  std::ostringstream out;
  Table table(out);
  benchmark::BenchmarkReporter::Context context;
  EXPECT_TRUE(table.ReportContext(context));
  for (const Run& run : runs) table.ReportRuns({run});
  table.Finalize();
  return out.str();
}

TEST(BenchTable, HasAColumnForEachFigureAndAlignsThem) {
  const std::string text =
      Print({MakeRun("curve/car/hdr/pixel",
                     {{"ns/pixel", 14.0}, {"floor_ns/pixel", 0.5}, {"to_floor", 28}}),
             MakeRun("curve/car/hdr/rows", {{"ns/pixel", 1.25},
                                            {"floor_ns/pixel", 0.5},
                                            {"to_floor", 2.5},
                                            {"to_pixel_form", 0.089}})});
  EXPECT_NE(text.find("3840x2160            ns/pixel  floor  to floor  to pixel form\n"
                      "curve/car/hdr/pixel     14.00   0.50     28.00               \n"
                      "curve/car/hdr/rows       1.25   0.50      2.50           0.09\n"),
            std::string::npos)
      << text;
}

TEST(BenchTable, LeavesOutWhatABenchmarkDoesNotMeasure) {
  const std::string text = Print({MakeRun("copy", {{"ns/pixel", 40.0}})});
  EXPECT_NE(text.find("copy          40.00                                \n"), std::string::npos)
      << text;
}

TEST(BenchTable, HasNoRowForABenchmarkThatFailed) {
  auto failed = MakeRun("broken", {});
  failed.error_occurred = true;
  failed.error_message = "no memory";
  EXPECT_EQ(Print({failed}).find("broken"), std::string::npos);
}

}  // namespace
