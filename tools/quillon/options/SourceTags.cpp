#include "tools/quillon/options/SourceTags.h"

#include "host/pavix/ColorSpaceUtils.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

/// With the override's primaries and transfer.
ColorDescription Override(const ColorDescription& file, const SourceOverride& given) {
  if (!given.colors.has_value()) return file;
  ColorDescription tagged = file;
  tagged.primaries = given.colors->primaries;
  tagged.transfer = given.colors->transfer;
  tagged.chromaticities = given.colors->chromaticities;
  if (given.tellsMatrix || !Mapper::Tells(file.matrix)) {
    tagged.matrix = given.colors->matrix;
  }
  return tagged;
}

/// What linear light of these primaries is called.
std::string LinearOption(const ColorDescription& colors) {
  for (const char* name : {"linear-bt709", "linear-p3", "linear-bt2020"}) {
    if (ColorSpaceOfName(name).primaries == colors.primaries) return std::string(" ") + name;
  }
  return "-cicp " + std::to_string(colors.primaries) + "/8/0";
}

}  // namespace

void RefuseGammaOfFloats(const std::filesystem::path& path, const ColorDescription& file,
                         bool isFloat, const SourceOverride& given) {
  const bool isLight = isFloat && file.transfer == RefHost::kTransferLinear;
  if (!isLight || !given.colors || !PX::ColorSpaceUtils::IsSDRColorSpace(ColorSpace(*given.colors)))
    return;
  throw CommandError(ExitCode::Usage, path.string() + " holds linear light in floats, and " +
                                          DescribeColorSpace(*given.colors) +
                                          " is a signal; --from" + LinearOption(*given.colors) +
                                          " is what is meant");
}

ColorDescription TaggedColors(const std::filesystem::path& path, const ColorDescription& file,
                              const SourceOverride& given, const std::string& optionSuffix) {
  ColorDescription tagged = Override(file, given);
  const std::string remedy = "tell with --from" + optionSuffix + " NAME (" + ColorSpaceNames() +
                             ") or --from-cicp" + optionSuffix + " P/T/M";
  if (!Mapper::TellsColors(tagged)) {
    throw CommandError(ExitCode::CannotRead, path.string() +
                                                 " does not say which colour space it is in (" +
                                                 DescribeColorSpace(tagged) + "); " + remedy);
  }
  if (Mapper::IsConvertible(tagged)) return tagged;
  throw CommandError(ExitCode::NotSupported, path.string() + ": there is no conversion from " +
                                                 DescribeColorSpace(tagged) + "; " + remedy);
}

}  // namespace Quillon::Cli
