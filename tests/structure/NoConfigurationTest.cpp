// What the engine asks of the system: nothing that could tell it how to work, and no arithmetic.

#include <string>

#include <gtest/gtest.h>

#include "tests/structure/Symbols.h"

namespace {

TEST(Engine, ReadsNeitherTheEnvironmentNorFiles) {
  const std::vector<std::string> imports = ReadImportedSymbols(QUILLON_LIBRARY);
  ASSERT_GT(imports.size(), 20U);
  for (const std::string& import : imports) {
    const std::string name = import.substr(0, import.find('@'));
    for (const char* refused : {"getenv", "secure_getenv", "environ", "__environ", "open", "open64",
                                "openat", "openat64", "fopen", "fopen64", "freopen", "opendir",
                                "read", "pread", "mmap", "stat", "popen", "system", "setlocale"}) {
      EXPECT_NE(name, refused);
    }
    for (const char* part : {"basic_filebuf", "basic_ifstream", "basic_fstream", "filesystem"}) {
      EXPECT_EQ(name.find(part), std::string::npos) << name;
    }
  }
}

TEST(Engine, TakesNoPowersFromTheCLibraryNorDoesTheAutomaticKnee) {
  for (const char* library : {QUILLON_LIBRARY, QUILLON_PAVIX_LIBRARY}) {
    for (const std::string& import : ReadImportedSymbols(library)) {
      const std::string name = import.substr(0, import.find('@'));
      for (const char* function : {"pow", "log", "log2", "exp", "exp2"}) {
        EXPECT_NE(name, function) << library;
        EXPECT_NE(name, std::string(function) + "f") << library;
      }
    }
  }
}

}  // namespace
