#pragma once

#include "tools/quillon/io/StillEncoders.h"
#include "tools/quillon/io/StillReaders.h"

namespace Quillon::Cli {

/// The module `avif`: all that calls libavif, which brings several codecs.
struct AvifModule {
  decltype(&ReadAvif) read;
  decltype(&EncodeAvif) encode;
};

}  // namespace Quillon::Cli
