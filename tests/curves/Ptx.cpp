#include "tests/curves/Ptx.h"

#include <sstream>
#include <string_view>

namespace {

/// The instruction of a line, "mul.rn.f32", without the predicate it may have before it; for a
/// line that is none, something else.
std::string InstructionIn(const std::string& line) {
  std::istringstream words(line);
  std::string word;
  words >> word;
  if (word.starts_with('@')) words >> word;
  return word;
}

bool IsExact(std::string_view instruction) {
  if (instruction.starts_with("fma.")) return false;
  // mad, add, sub and mul are for integers too. Without a rounding mode of their own the assembler
  // may fuse the last three (PTX ISA, "add", "sub" and "mul" of floating point).
  const bool isOnFloats = instruction.ends_with(".f32") || instruction.ends_with(".f64");
  if (instruction.starts_with("mad.") && isOnFloats) return false;
  for (const std::string_view operation : {"add.", "sub.", "mul."}) {
    if (!instruction.starts_with(operation) || !isOnFloats) continue;
    if (instruction.find(".rn") == std::string_view::npos) return false;
  }
  for (const std::string_view modifier : {".ftz", ".approx", ".full"}) {
    if (instruction.find(modifier) != std::string_view::npos) return false;
  }
  return true;
}

}  // namespace

std::vector<std::string> KernelsOf(const std::string& ptx) {
  std::vector<std::string> kernels;
  std::istringstream words(ptx);
  for (std::string word; words >> word;) {
    if (word != ".entry" || !(words >> word)) continue;
    kernels.push_back(word.substr(0, word.find('(')));
  }
  return kernels;
}

std::vector<std::string> InexactLines(const std::string& ptx) {
  std::vector<std::string> lines;
  std::istringstream text(ptx);
  for (std::string line; std::getline(text, line);) {
    if (!IsExact(InstructionIn(line))) lines.push_back(line);
  }
  return lines;
}
