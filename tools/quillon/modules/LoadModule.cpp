#include "tools/quillon/modules/LoadModule.h"

#include <filesystem>
#include <string>

#include <dlfcn.h>

#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

/// Relative to the program, so that both may be moved together.
fs::path FileOf(const char* name) {
  const fs::path program = fs::read_symlink("/proc/self/exe");
  return (program.parent_path() / QUILLON_MODULE_FOLDER / name).lexically_normal() += ".so";
}

[[noreturn]] void Fail(const fs::path& file, const char* need) {
  const char* const reason = dlerror();
  throw CommandError(ExitCode::NotSupported,
                     file.string() + ": it is needed for " + need + " and cannot be loaded (" +
                         (reason != nullptr ? reason : "no reason is told") +
                         "); install what is missing there, or quillon again with all its files");
}

}  // namespace

const void* LoadModule(const char* name, const char* need) {
  const fs::path file = FileOf(name);
  void* const module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) Fail(file, need);
  const auto table = reinterpret_cast<decltype(&QuillonModule)>(dlsym(module, "QuillonModule"));
  if (table == nullptr) Fail(file, need);
  return table();
}

}  // namespace Quillon::Cli
