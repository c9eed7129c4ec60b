#include "tests/tools/ScratchFolder.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
  std::string pattern = (fs::temp_directory_path() / "quillon-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make " + pattern);
  path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::vector<std::string> ScratchFolder::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}
