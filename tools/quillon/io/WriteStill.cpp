#include "tools/quillon/io/WriteStill.h"

#include <new>
#include <string>

#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/StillFormats.h"
#include "tools/quillon/io/TargetFile.h"

namespace Quillon::Cli {

namespace {

/// Null for an extension that no format has that is written.
const StillFormat* FindFormat(const std::string& extension) {
  for (const StillFormat& format : StillFormats()) {
    if (format.encode != nullptr && format.extension == extension) return &format;
  }
  return nullptr;
}

const StillFormat& FormatOf(const std::filesystem::path& path) {
  const std::string extension = LowerCaseExtension(path);
  if (const StillFormat* format = FindFormat(extension)) return *format;
  throw StillError(StillErrorKind::NotSupported, path,
                   "the extension \"" + extension + "\" names no format that is written",
                   "choose " + WrittenStillExtensions());
}

}  // namespace

bool NamesStill(const std::filesystem::path& path) {
  return FindFormat(LowerCaseExtension(path)) != nullptr;
}

void CheckStillTarget(const std::filesystem::path& path, bool overwrite) {
  FormatOf(path);
  CheckTargetFile(path, overwrite);
}

void WriteStill(const StillOutput& output, const std::filesystem::path& path) {
  CheckStillTarget(path, output.overwrite);
  try {
    WriteTargetFile(path, FormatOf(path).encode(output, path), output.overwrite);
  } catch (const std::bad_alloc&) {
    throw StillError(StillErrorKind::CannotWrite, path, "there is not enough memory to encode it",
                     "write a smaller picture");
  }
}

}  // namespace Quillon::Cli
