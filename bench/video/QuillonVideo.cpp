#include "bench/video/QuillonVideo.h"

#include <utility>

#include "bench/Frames.h"
#include "bench/video/VideoFrames.h"
#include "engine/Quillon.h"
#include "host/kestrel/FrameManipulators.h"

namespace {

constexpr orvmediatypes::RenderQuality kQuality = 4;
constexpr float kPeakSignal = 0.751827F;  // of 1000 nits in PQ

}  // namespace

QuillonVideo::QuillonVideo(orvmediatypes::color::ToneMapAlgorithmType algorithm,
                           PX::VideoFrameRef source)
    : source_(std::move(source)),
      working_(Make4kFrame(orvmediatypes::kLinearFloatBGRA, WorkingColorSpace())),
      destination_(MakeSdrFrame()) {
  auto& toneMap = settings_.toneMapSettings;
  toneMap.sourceColorSpace = source_->GetColorSpace();
  toneMap.destinationColorSpace = destination_->GetColorSpace();
  toneMap.controls.peak = kPeakSignal;
  toneMap.algorithmType = algorithm;
}

void QuillonVideo::MapFrame() {
  Check(Quillon::ApplyGamutMapping(source_, settings_, destination_), "ApplyGamutMapping");
}

void QuillonVideo::CopyIn() {
  Check(KS::VideoFrameManipulators::CopyFrame(source_, working_, kQuality, {}), "CopyFrame");
}

void QuillonVideo::MapWorkingFrame() {
  PX::VideoFrameRef working = working_;
  Check(Quillon::ApplyGamutMapping(working_, settings_, working), "ApplyGamutMapping");
}

void QuillonVideo::CopyOut() {
  Check(KS::VideoFrameManipulators::CopyFrame(working_, destination_, kQuality, {}), "CopyFrame");
}
