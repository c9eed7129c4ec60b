#include "tools/quillon/options/SourceTags.h"

#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

using orvmediatypes::color::ColorDescription;

namespace {

/// With the override's primaries and transfer.
ColorDescription Override(const ColorDescription& file, const SourceOverride& given) {
  if (!given.colors.has_value()) return file;
  ColorDescription tagged = file;
  tagged.primaries = given.colors->primaries;
  tagged.transfer = given.colors->transfer;
  tagged.chromaticities = {};
  if (given.tellsMatrix || !Mapper::Tells(file.matrix)) {
    tagged.matrix = given.colors->matrix;
  }
  return tagged;
}

}  // namespace

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
