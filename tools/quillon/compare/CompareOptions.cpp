#include "tools/quillon/compare/CompareOptions.h"

#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

std::string_view ComparedGamutName(std::uint8_t primaries) {
  for (const auto& choice : kComparedGamuts) {
    if (choice.value == primaries) return choice.name;
  }
  return {};
}

std::vector<std::filesystem::path> CompareOptions::Written() const {
  std::vector<std::filesystem::path> files;
  if (!output.empty()) files.push_back(output);
  if (WritesJson()) files.push_back(json);
  return files;
}

void CheckCompareOptions(const CompareOptions& options) {
  if (options.splitShare && options.view != CompareView::Split) {
    throw CommandError(ExitCode::Usage, "--split has no effect without --view split");
  }
  if (options.overwrite && options.Written().empty()) {
    throw CommandError(ExitCode::Usage,
                       "--overwrite has no effect where no file is written; leave it out");
  }
  if (options.WritesJson() && options.json == options.output) {
    throw CommandError(ExitCode::Usage, "the view and the figures cannot be one file");
  }
}

}  // namespace Quillon::Cli
