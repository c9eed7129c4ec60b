// The main function of all test programs. A program runs its tests in one process, and writes what
// becomes of each to the file that QUILLON_TEST_REPORT names, for `./dev` to count: a line at once
// for each, so that a program that crashes or is killed leaves the name of the test that ran.

#include <cstdlib>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

/// Writes lines "listed NAME" for all tests before the first, "disabled NAME" for those of them
/// that do not run, then for each "began NAME" and one of "passed NAME", "failed NAME", "skipped
/// NAME".
class Report : public testing::EmptyTestEventListener {
 public:
  explicit Report(const char* path) : path_(path) {}

  void OnTestProgramStart(const testing::UnitTest& program) override {
    file_.open(path_);
    for (int i = 0; i < program.total_test_suite_count(); ++i) {
      const testing::TestSuite& suite = *program.GetTestSuite(i);
      for (int k = 0; k < suite.total_test_count(); ++k) {
        const testing::TestInfo& test = *suite.GetTestInfo(k);
        if (!test.is_reportable()) continue;
        Write("listed", test);
        if (!test.should_run()) Write("disabled", test);
      }
    }
  }
  void OnTestStart(const testing::TestInfo& test) override { Write("began", test); }
  void OnTestEnd(const testing::TestInfo& test) override {
    const testing::TestResult& result = *test.result();
    Write(result.Skipped() ? "skipped" : result.Passed() ? "passed" : "failed", test);
  }

 private:
  void Write(const char* event, const testing::TestInfo& test) {
    file_ << event << ' ' << test.test_suite_name() << '.' << test.name() << std::endl;
  }

  const char* path_;
  std::ofstream file_;
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  if (const char* path = std::getenv("QUILLON_TEST_REPORT")) {
    testing::UnitTest::GetInstance()->listeners().Append(new Report(path));
  }
  return RUN_ALL_TESTS();
}
