#include "tools/quillon/picture/SourceTags.h"

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/process/ExitCodes.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {
bool Tells(std::uint8_t point) { return point != 0 && point != H273::kUnspecified; }
}  // namespace

ColorDescription TaggedSource(const ColorDescription& file, const SourceOverride& given) {
  if (!given.colors.has_value()) return file;
  ColorDescription tagged = file;
  tagged.primaries = given.colors->primaries;
  tagged.transfer = given.colors->transfer;
  tagged.chromaticities = {};
  if (given.tellsMatrix || !Tells(file.matrix)) tagged.matrix = given.colors->matrix;
  return tagged;
}

void RequireTags(const std::filesystem::path& path, const ColorDescription& tagged,
                 const std::string& optionSuffix) {
  const bool tellsPrimaries =
      Tells(tagged.primaries) || H273::ChromaticitiesOf(ColorSpace(tagged)).has_value();
  if (Tells(tagged.transfer) && tellsPrimaries) return;
  throw CommandError(ExitCode::CannotRead, path.string() +
                                               " does not say which colour space it is in (" +
                                               DescribeColorSpace(tagged) + "); tell with --from" +
                                               optionSuffix + " NAME (" + ColorSpaceNames() +
                                               ") or --from-cicp" + optionSuffix + " P/T/M");
}
