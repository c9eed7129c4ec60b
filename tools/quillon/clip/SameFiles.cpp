#include "tools/quillon/clip/SameFiles.h"

#include <algorithm>
#include <set>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include "tools/quillon/clip/SequenceName.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

using Identity = std::pair<dev_t, ino_t>;

std::set<Identity> IdentitiesOf(const fs::path& path) {
  std::vector<fs::path> files = {path};
  if (const auto sequence = SequenceName::Parse(path)) {
    files.clear();
    for (const std::int64_t number : sequence->ExistingNumbers()) {
      files.push_back(sequence->FileOf(number));
    }
  }
  std::set<Identity> identities;
  for (const fs::path& file : files) {
    struct stat status {};
    if (stat(file.c_str(), &status) == 0) identities.emplace(status.st_dev, status.st_ino);
  }
  return identities;
}

bool IsSequence(const fs::path& path) { return SequenceName::Parse(path).has_value(); }

bool AreOneSequence(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return IsSequence(a) && a.filename() == b.filename() &&
         fs::equivalent(FolderOf(a), FolderOf(b), ignored);
}

[[noreturn]] void Refuse(const std::string& sentence) {
  throw CommandError(ExitCode::Usage, sentence);
}

}  // namespace

bool ShareFiles(const fs::path& a, const fs::path& b) {
  if (AreOneSequence(a, b)) return true;
  const std::set<Identity> ofA = IdentitiesOf(a);
  const std::set<Identity> ofB = IdentitiesOf(b);
  return std::any_of(ofA.begin(), ofA.end(),
                     [&ofB](const Identity& file) { return ofB.contains(file); });
}

void RequireOtherFile(const fs::path& output, const fs::path& input) {
  if (output.empty() || !ShareFiles(output, input)) return;
  Refuse(output.string() + ": it is the input itself; choose another name");
}

void CheckInPlace(const fs::path& output, const fs::path& input, bool inPlace) {
  const bool shared = ShareFiles(output, input);
  if (inPlace && !shared) {
    Refuse("--in-place has no effect, since " + output.string() +
           " is not the input; leave it out");
  }
  if (!shared) return;
  // Its pictures would be lost one by one, and a broken-off run could not tell which are mapped.
  if (IsSequence(input) || IsSequence(output)) {
    Refuse(
        output.string() +
        ": it holds pictures of the input, which a sequence cannot replace; choose another name");
  }
  if (!inPlace) {
    Refuse(output.string() +
           ": it is the input itself; choose another name, or give --in-place to replace it");
  }
}

}  // namespace Quillon::Cli
