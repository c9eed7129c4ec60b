#include "tools/quillon/modules/Clips.h"
#include "tools/quillon/modules/LoadModule.h"
#include "tools/quillon/video/AvLog.h"

namespace Quillon::Cli {

extern "C" const void* QuillonModule() {
  QuietAvLog();
  static constexpr ClipsModule kTable = {MapClip, RequireClip, OpenClip, CountClipFrames,
                                         WriteChartClip};
  return &kTable;
}

}  // namespace Quillon::Cli
