#pragma once

#include "host/pavix/IVideoFrame.h"
#include "mapper/Plan.h"

/// The mapping of a frame by MakeHdr10Frame to one by MakeSdrFrame.
class QuillonVideo {
 public:
  QuillonVideo(Quillon::Mapper::Algorithm algorithm, PX::VideoFrameRef source);

  /// One call: the engine itself copies out of the source and into the destination.
  void MapFrame();

  /// What MapFrame does, in three steps on a working frame of linear light.
  void CopyIn();
  void MapWorkingFrame();
  void CopyOut();

  const PX::VideoFrameRef& Result() const { return destination_; }

 private:
  PX::VideoFrameRef source_;
  PX::VideoFrameRef working_;
  PX::VideoFrameRef destination_;
  Quillon::Mapper::Plan plan_;
  Quillon::Mapper::Plan planOfLight_;  ///< the same from linear light
};
