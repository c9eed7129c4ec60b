#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// One include of a file of the engine.
struct Include {
  std::string file;    ///< relative to the root, "cpu/QuillonImpl.cpp"
  std::string target;  ///< as written
};

/// The quoted includes, `#include "..."`, of all sources in the engine's folders under `root`.
std::vector<Include> ReadIncludes(const std::filesystem::path& root);

/// The same for `#include <...>`.
std::vector<Include> ReadSystemIncludes(const std::filesystem::path& root);

/// Whether the target lies in the file's own folder or further down the order engine, gpu, cpu,
/// tonemap, curves and base, host. Neither of curves and base includes the other, curves nothing
/// but itself; nothing includes what lies outside these folders.
bool RunsDown(const Include& include);
