#pragma once

#include <memory>
#include <optional>
#include <ostream>

#include "tools/quillon/clip/OutputTimes.h"
#include "tools/quillon/clip/PartialClip.h"
#include "tools/quillon/clip/PictureSink.h"
#include "tools/quillon/clip/PictureSource.h"
#include "tools/quillon/io/OutputLock.h"
#include "tools/quillon/map/ClipMapper.h"
#include "tools/quillon/map/MapOptions.h"

namespace Quillon::Cli {

/// What a run over a clip is made of, found out before anything is written.
struct ClipRun {
  std::unique_ptr<OutputLock> lock;  ///< null where nothing is written
  std::optional<FrameIndex> index;   ///< where single frames of a clip have to be found
  std::int64_t frames = 0;           ///< of the source, as far as is known
  FrameSelection selection;          ///< what the output shows
  FrameSelection left;               ///< what is still to be mapped
  std::unique_ptr<PictureSource> source;
  std::unique_ptr<ClipMapper> mapper;
  std::optional<Encoding> encoding;  ///< nothing for image sequences
  std::string settings;              ///< all that shapes the output, as text
  EncodedFrames earlier;             ///< what an earlier run has encoded
};

/// Opens the source and settles everything. Writes nothing but, with a measured peak, the levels
/// that are kept beside the clip. Throws CommandError or StillError.
ClipRun PrepareClipRun(const MapOptions& options, std::ostream& notes);

/// Times of the run's output.
OutputTimes TimesOf(const ClipRun& run);

/// Makes the output. Throws CommandError or StillError.
std::unique_ptr<PictureSink> MakeSink(const MapOptions& options, const ClipRun& run);

}  // namespace Quillon::Cli
