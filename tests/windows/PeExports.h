#pragma once

#include <string>
#include <string_view>
#include <vector>

// What a library for Windows exports, read from its bytes and taken out of them (Microsoft, "PE
// Format": the export directory table). All throw std::runtime_error for what is no 64-bit library.

struct Export {
  /// Empty where it goes by its number alone.
  std::string name;
  bool isCode = false;
};

/// In the order of their numbers.
std::vector<Export> ReadExports(std::string_view library);

/// Takes a name out of the table and closes the gap; what it named stays, without a name. Throws
/// where the library exports no such name.
void RemoveExport(std::string& library, std::string_view name);
