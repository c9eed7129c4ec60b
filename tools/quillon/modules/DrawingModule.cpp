#include "tools/quillon/modules/Drawing.h"
#include "tools/quillon/modules/LoadModule.h"

namespace Quillon::Cli {

extern "C" const void* QuillonModule() {
  static constexpr DrawingModule kTable = {DrawSvg, DrawBitmap};
  return &kTable;
}

}  // namespace Quillon::Cli
