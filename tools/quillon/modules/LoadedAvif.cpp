#include "tools/quillon/modules/Avif.h"
#include "tools/quillon/modules/LoadModule.h"

namespace Quillon::Cli {

namespace {

const AvifModule& Avif() {
  static const auto& kModule = LoadModule<AvifModule>("avif", "AVIF pictures");
  return kModule;
}

}  // namespace

Still ReadAvif(const StillSource& source) { return Avif().read(source); }

std::vector<std::uint8_t> EncodeAvif(const StillOutput& output, const std::filesystem::path& path) {
  return Avif().encode(output, path);
}

}  // namespace Quillon::Cli
