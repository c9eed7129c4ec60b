#include "tools/quillon/modules/Avif.h"
#include "tools/quillon/modules/LoadModule.h"

namespace Quillon::Cli {

extern "C" const void* QuillonModule() {
  static constexpr AvifModule kTable = {ReadAvif, EncodeAvif};
  return &kTable;
}

}  // namespace Quillon::Cli
