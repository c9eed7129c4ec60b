#pragma once

#include <functional>

#include "tools/quillon/clip/FrameSelection.h"
#include "tools/quillon/clip/OutputTimes.h"
#include "tools/quillon/clip/PictureSink.h"
#include "tools/quillon/clip/PictureSource.h"

namespace Quillon::Cli {

/// What a run over pictures consists of.
struct PipelineWork {
  PictureSource& source;
  PictureSink& sink;
  const FrameSelection& selection;
  const OutputTimes& times;
  /// Maps a picture, on the thread of the caller.
  std::function<void(const ClipPicture& from, PX::VideoFrameRef& to)> map;
  /// Whether a packet that the sink refuses ends the run.
  bool stopsAtRefused = true;
  /// Asked before each picture; true ends the run.
  std::function<bool()> isStopped;
};

/// Runs the pictures through reading, mapping and writing, each on a thread of its own and a few
/// pictures ahead of the next. Neither finishes nor abandons the sink. False where the run was
/// stopped. Throws what the stages throw; all threads have ended then.
bool RunPipeline(const PipelineWork& work);

}  // namespace Quillon::Cli
