#include "tools/quillon/modules/Avif.h"
#include "tools/quillon/modules/LoadModule.h"

extern "C" const void* QuillonModule() {
  static constexpr AvifModule kTable = {ReadAvif, EncodeAvif};
  return &kTable;
}
