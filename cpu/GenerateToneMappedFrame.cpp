#include "base/FrameMemory.h"
#include "base/ResultCodes.h"
#include "cpu/QuillonImpl.h"

namespace Quillon {

int QuillonImpl::GenerateToneMappedFrame(
    const PX::VideoFrameRef& source, const PX::GamutMappingUtils::GamutMappingSettings& settings,
    const PX::VideoFrameRef& destination) {
  const FrameMemory from(source);
  const FrameMemory to(destination);
  const orvcore::geom::Bounds bounds = source->GetBounds();
  const std::int32_t fromRowBytes = from.RowBytes();
  const std::int32_t toRowBytes = to.RowBytes();
  const orvmediatypes::PixelFormat fromFormat = source->GetPixelFormat();
  const orvmediatypes::PixelFormat toFormat = destination->GetPixelFormat();
  void* fromPixels = from.Data();
  void* toPixels = to.Data();

  // Deliberate: without a message of its own, which the pipeline traces.
  if (fromFormat != toFormat) return kInvalidFrame;
  if (destination->GetBounds() != bounds) return kInvalidFrame;
  if (fromPixels == nullptr || toPixels == nullptr) return kInvalidFrame;
  if (fromFormat != orvmediatypes::kLinearFloatBGRA) return kNotSupported;

  constexpr int kFloatBytes = sizeof(float);
  return GenerateGamutMappedFrame(static_cast<float*>(fromPixels), static_cast<float*>(toPixels),
                                  bounds.height, bounds.width, fromRowBytes / kFloatBytes,
                                  toRowBytes / kFloatBytes, settings);
}

}  // namespace Quillon
