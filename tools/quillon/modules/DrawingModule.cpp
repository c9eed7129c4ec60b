#include "tools/quillon/modules/Drawing.h"
#include "tools/quillon/modules/LoadModule.h"

extern "C" const void* QuillonModule() {
  static constexpr DrawingModule kTable = {DrawSvg, DrawBitmap};
  return &kTable;
}
