#pragma once

#include <string>
#include <vector>

/// Rows of a table beside these tests, each cut at its commas; comments and the heading left out.
std::vector<std::vector<std::string>> ReadTable(const std::string& fileName);
