#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The names that a library for Windows exports, read from its bytes and taken out of them
// (Microsoft, "PE Format": the export directory table).

/// The exported names in the order of the table, which is that of their bytes. All functions below
/// throw std::runtime_error for what is no 64-bit library.
std::vector<std::string> ExportedNames(std::string_view library);

/// How many entries the library exports, those without a name among them.
std::size_t ExportCount(std::string_view library);

/// Takes a name out of the table and closes the gap; its function stays. Throws where the library
/// exports no such name.
void RemoveExport(std::string& library, std::string_view name);
