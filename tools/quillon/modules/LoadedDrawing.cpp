#include "tools/quillon/modules/Drawing.h"
#include "tools/quillon/modules/LoadModule.h"

namespace Quillon::Cli {

namespace {

const DrawingModule& Drawing() {
  static const auto& kModule = LoadModule<DrawingModule>("drawing", "plots and captions");
  return kModule;
}

}  // namespace

std::string DrawSvg(const Scene& scene) { return Drawing().drawSvg(scene); }

Bitmap DrawBitmap(const Scene& scene) { return Drawing().drawBitmap(scene); }

}  // namespace Quillon::Cli
