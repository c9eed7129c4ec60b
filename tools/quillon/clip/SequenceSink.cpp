#include "tools/quillon/clip/SequenceSink.h"

#include <filesystem>
#include <system_error>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/LightLevels.h"
#include "tools/quillon/process/Words.h"

namespace Quillon::Cli {

SequenceSink::SequenceSink(SequenceName name, int width, int height,
                           const orvmediatypes::color::ColorSpace& colorSpace, StillOutput still,
                           bool resume)
    : name_(std::move(name)),
      width_(width),
      height_(height),
      colorSpace_(colorSpace),
      still_(std::move(still)),
      resume_(resume) {}

MappedPicture SequenceSink::NewPicture() {
  MappedPicture picture;
  picture.frame = MakeFloatFrame(width_, height_, colorSpace_);
  return picture;
}

bool SequenceSink::Has(std::int64_t number) const {
  std::error_code ignored;
  return resume_ && std::filesystem::exists(name_.FileOf(number), ignored);
}

void SequenceSink::Write(MappedPicture picture, const ClipPicture& /*source*/) {
  StillOutput output = still_;
  output.frame = picture.frame;
  output.light =
      LightOfResult(picture.frame, static_cast<int>(still_.settings.GetGraphicsWhiteLuminance()));
  WriteStill(output, name_.FileOf(picture.number));
  ++written_;
}

std::string SequenceSink::Abandon(bool /*atOnce*/) {
  if (written_ == 0) return {};
  return Counted(written_, "picture") + " written";
}

}  // namespace Quillon::Cli
