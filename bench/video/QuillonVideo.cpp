#include "bench/video/QuillonVideo.h"

#include <stdexcept>
#include <utility>

#include "bench/Frames.h"
#include "bench/video/VideoFrames.h"
#include "mapper/Frames.h"

using Quillon::Mapper::Algorithm;
using Quillon::Mapper::Plan;

namespace {

void Check(const Quillon::Mapper::Failure& failure) {
  if (failure) throw std::runtime_error(failure->message + ": " + failure->trace);
}

Plan PlanFrom(const PX::VideoFrameRef& source, const PX::VideoFrameRef& destination,
              Algorithm algorithm) {
  const auto plan = Plan::Make(
      {source->GetColorSpace().Description(), {}}, {destination->GetColorSpace().Description()},
      {.algorithm = algorithm, .white = kWhiteNits}, {kSourceNits, "given"});
  if (!plan) throw std::runtime_error(plan.error().message);
  return *plan;
}

}  // namespace

QuillonVideo::QuillonVideo(Algorithm algorithm, PX::VideoFrameRef source)
    : source_(std::move(source)),
      working_(Make4kFrame(orvmediatypes::kLinearFloatBGRA, WorkingColorSpace())),
      destination_(MakeSdrFrame()),
      plan_(PlanFrom(source_, destination_, algorithm)),
      planOfLight_(PlanFrom(working_, destination_, algorithm)) {}

void QuillonVideo::MapFrame() { Check(Quillon::Mapper::MapFrame(plan_, source_, destination_)); }

void QuillonVideo::CopyIn() {
  Check(Quillon::Mapper::CopyConverted(source_, working_, kWhiteNits));
}

void QuillonVideo::MapWorkingFrame() {
  Check(Quillon::Mapper::MapFrame(planOfLight_, working_, working_));
}

void QuillonVideo::CopyOut() {
  Check(Quillon::Mapper::CopyConverted(working_, destination_, kWhiteNits));
}
