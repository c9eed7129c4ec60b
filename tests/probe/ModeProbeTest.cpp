// Runs the probe in every floating-point mode, each in a process whose first call it is.

#include <array>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace {

struct ModeRun {
  int exitCode = -1;
  std::string out;
};

ModeRun RunProbe(const std::string& mode) {
  ModeRun run;
  FILE* pipe = popen(("'" QUILLON_MODE_PROBE "' " + mode).c_str(), "r");
  if (pipe == nullptr) return run;
  std::array<char, 4096> chunk{};
  while (std::fgets(chunk.data(), chunk.size(), pipe) != nullptr) run.out += chunk.data();
  const int status = pclose(pipe);
  if (WIFEXITED(status)) run.exitCode = WEXITSTATUS(status);
  return run;
}

TEST(FloatingPointMode, ReachesNoResultAndComesBack) {
  const ModeRun nearest = RunProbe("nearest");
  ASSERT_EQ(nearest.exitCode, 0);
  // 12 combinations of algorithms, whose 20 calls each give one result.
  std::istringstream text(nearest.out);
  std::set<std::string> lines;
  int count = 0;
  for (std::string line; std::getline(text, line); ++count) {
    EXPECT_NE(line.find(": 0 "), std::string::npos) << line;
    lines.insert(line);
  }
  EXPECT_EQ(count, 240);
  EXPECT_EQ(lines.size(), 12U);
  for (const char* mode : {"downward", "upward", "toward-zero"}) {
    const ModeRun run = RunProbe(mode);
    EXPECT_EQ(run.exitCode, 0) << mode;
    EXPECT_EQ(run.out, nearest.out) << mode;
  }
#if defined(__SSE2__)
  for (const char* mode : {"ftz", "daz", "ftz-daz"}) {
    const ModeRun run = RunProbe(mode);
    EXPECT_EQ(run.exitCode, 0) << mode;
    EXPECT_EQ(run.out, nearest.out) << mode;
  }
#endif
}

TEST(FloatingPointMode, IsOneThatThereIs) { EXPECT_EQ(RunProbe("sideways").exitCode, 2); }

}  // namespace
