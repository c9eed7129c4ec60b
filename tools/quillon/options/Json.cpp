#include "tools/quillon/options/Json.h"

#include "tools/quillon/options/ColorSpaceNames.h"

namespace Quillon::Cli {

using nlohmann::ordered_json;

ordered_json ColorSpaceJson(const orvmediatypes::color::ColorDescription& description) {
  return {{"name", DescribeColorSpace(description)},
          {"primaries", description.primaries},
          {"transfer", description.transfer},
          {"matrix", description.matrix}};
}

std::string FormatJson(const ordered_json& json) {
  return json.dump(2, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

}  // namespace Quillon::Cli
