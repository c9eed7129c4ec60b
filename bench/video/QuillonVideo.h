#pragma once

#include <string>

#include "host/pavix/GamutMappingUtils.h"
#include "host/pavix/IVideoFrame.h"

/// The engine's mapping of a frame by MakeHdr10Frame to one by MakeSdrFrame.
class QuillonVideo {
 public:
  QuillonVideo(orvmediatypes::color::ToneMapAlgorithmType algorithm, PX::VideoFrameRef source);

  /// One call: the engine itself copies out of the source and into the destination.
  void MapFrame();

  /// What MapFrame does, in three steps on a working frame of linear light.
  void CopyIn();
  void MapWorkingFrame();
  void CopyOut();

  const PX::VideoFrameRef& Result() const { return destination_; }

 private:
  PX::GamutMappingUtils::GamutMappingSettings settings_;
  PX::VideoFrameRef source_;
  PX::VideoFrameRef working_;
  PX::VideoFrameRef destination_;
};
