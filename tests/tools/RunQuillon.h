#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <sys/types.h>

#include "tests/tools/ScratchFolder.h"

/// What a run of the command line left.
struct RunResult {
  int exitCode = -1;  ///< below 0: minus the signal that ended it
  std::string out;
  std::string err;
};

/// Starts the built `quillon` with these arguments; what it prints goes into two files.
pid_t StartQuillon(const std::vector<std::string>& arguments,
                   const std::filesystem::path& out = "/dev/null",
                   const std::filesystem::path& err = "/dev/null");
/// Waits for it. Its exit code, or minus the signal that ended it.
int WaitFor(pid_t process);

/// Runs the built `quillon` with these arguments.
RunResult RunQuillon(const std::vector<std::string>& arguments);
/// Runs another program, as a copy of it that lies elsewhere.
RunResult RunProgram(const std::filesystem::path& program,
                     const std::vector<std::string>& arguments);

std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, const std::string& bytes);
