// What the compiler made of the curves: no product and sum in one instruction, which rounds once.

#include <array>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::vector<std::string> Objects() {
  std::vector<std::string> objects;
  std::istringstream names(QUILLON_CURVE_OBJECTS);
  for (std::string name; std::getline(names, name, ':');) objects.push_back(name);
  return objects;
}

/// Lines of a disassembly, one an instruction.
std::vector<std::string> Disassemble(const std::string& object) {
  std::vector<std::string> lines;
  FILE* pipe = popen((QUILLON_OBJDUMP " -d --no-show-raw-insn '" + object + "'").c_str(), "r");
  if (pipe == nullptr) return lines;
  std::array<char, 4096> line{};
  while (std::fgets(line.data(), line.size(), pipe) != nullptr) lines.emplace_back(line.data());
  pclose(pipe);
  return lines;
}

bool IsFused(const std::string& line) {
  for (const char* instruction : {"\tvfmadd", "\tvfmsub", "\tvfnmadd", "\tvfnmsub", "\tfmadd",
                                  "\tfmsub", "\tfmla", "\tfmls"}) {
    if (line.find(instruction) != std::string::npos) return true;
  }
  return false;
}

TEST(CurveObjects, FuseNoProductIntoASum) {
  const std::vector<std::string> objects = Objects();
  ASSERT_GT(objects.size(), 10U);
  for (const std::string& object : objects) {
    const std::vector<std::string> lines = Disassemble(object);
    EXPECT_GT(lines.size(), 10U) << object;
    for (const std::string& line : lines) ASSERT_FALSE(IsFused(line)) << object << ": " << line;
  }
}

TEST(CurveObjects, AreReadByInstruction) {
  EXPECT_TRUE(IsFused("  4011:\tvfmadd213ps %zmm1,%zmm2,%zmm3"));
  EXPECT_FALSE(IsFused("  4011:\tvmulps %zmm1,%zmm2,%zmm3"));
}

}  // namespace
