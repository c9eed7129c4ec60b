#include "tools/quillon/options/ColorSpaceNames.h"

#include <string>

#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;

ColorDescription ColorSpaceOfName(std::string_view name) {
  if (const auto known = Mapper::ColorSpaceOfName(name)) return *known;
  throw CommandError(
      ExitCode::Usage,
      "'" + std::string(name) + "' is no colour space known here; known are " + ColorSpaceNames());
}

ColorDescription ColorSpaceOfCicp(std::string_view text) {
  if (const auto known = Mapper::ColorSpaceOfCicp(text)) return *known;
  throw CommandError(ExitCode::Usage,
                     "'" + std::string(text) + "' is not three code points P/T/M such as 9/16/9");
}

}  // namespace Quillon::Cli
