#include "tools/quillon/clip/SinglePicture.h"

#include <utility>

#include "refhost/kestrel/PixelFormats.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/io/TargetFile.h"

namespace Quillon::Cli {

SinglePicture::SinglePicture(const std::filesystem::path& path, std::int64_t maxPixels) {
  const Still still = ReadStill(path, maxPixels);
  ClipPicture picture;
  picture.frame = still.frame;
  picture.tags = {still.frame->GetColorSpace().Description(), still.light, still.whiteNits};
  const orvcore::geom::Bounds bounds = still.frame->GetBounds();
  const auto format = RefHost::DescribeFormat(still.frame->GetPixelFormat());
  info_.container = "still";
  info_.codec = LowerCaseExtension(path).erase(0, 1);
  info_.width = bounds.width;
  info_.height = bounds.height;
  info_.bits = format ? format->bits : 0;
  info_.frames = 1;
  info_.tags = picture.tags;
  picture_ = std::move(picture);
}

std::optional<SourceItem> SinglePicture::NextItem() {
  return std::exchange(picture_, std::nullopt);
}

}  // namespace Quillon::Cli
