#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/tools/ScratchFolder.h"

/// What a run of the command line left.
struct RunResult {
  int exitCode = -1;  ///< -1: ended by a signal
  std::string out;
  std::string err;
};

/// Runs the built `quillon` with these arguments.
RunResult RunQuillon(const std::vector<std::string>& arguments);

std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, const std::string& bytes);
