#include "tests/tools/lut/CubeText.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace Quillon::Cli {

namespace {

Signal ReadResult(const std::string& line) {
  std::istringstream numbers(line);
  Signal result{};
  std::string rest;
  if (!(numbers >> result[0] >> result[1] >> result[2]) || numbers >> rest) {
    throw std::runtime_error("no three numbers: " + line);
  }
  for (const float component : result) {
    if (!(component >= 0.0F && component <= 1.0F)) throw std::runtime_error("not 0 to 1: " + line);
  }
  return result;
}

bool TakeKeyword(const std::string& line, CubeText& cube) {
  const auto begins = [&line](const char* keyword) { return line.rfind(keyword, 0) == 0; };
  if (begins("#")) {
    cube.comments += line + '\n';
  } else if (begins("TITLE \"")) {
    cube.title = line.substr(7, line.size() - 8);
  } else if (begins("LUT_3D_SIZE ")) {
    cube.lattice.size = std::stoi(line.substr(12));
  } else {
    return line == "DOMAIN_MIN 0.0 0.0 0.0" || line == "DOMAIN_MAX 1.0 1.0 1.0";
  }
  return true;
}

}  // namespace

CubeText ReadCube(const std::filesystem::path& path) {
  CubeText cube;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (!TakeKeyword(line, cube)) cube.lattice.results.push_back(ReadResult(line));
  }
  const auto size = static_cast<std::size_t>(cube.lattice.size);
  if (size == 0 || cube.lattice.results.size() != size * size * size) {
    throw std::runtime_error(std::to_string(cube.lattice.results.size()) + " results");
  }
  return cube;
}

double NumberBehind(const std::string& comments, const std::string& text) {
  const std::size_t found = comments.find(text);
  if (found == std::string::npos) throw std::runtime_error("no '" + text + "'");
  return std::stod(comments.substr(found + text.size()));
}

}  // namespace Quillon::Cli
