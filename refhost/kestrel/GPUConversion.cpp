#include "refhost/kestrel/GPUConversion.h"

#include <cstdint>

#include "refhost/kestrel/PixelKernel.h"

namespace RefHost {

int ConvertOnGPU(const GPUFrameView& source, const GPUFrameView& destination,
                 const PixelConverter* converter) {
  const ConversionParams params = converter == nullptr ? ConversionParams{} : converter->Params();
  const std::int32_t converts = converter == nullptr ? 0 : 1;
  return RunPixelKernel("PixelConversion", "ConvertPixels", {source, destination},
                        {{&converts, sizeof(converts), alignof(std::int32_t)},
                         {&params, sizeof(params), alignof(ConversionParams)}});
}

}  // namespace RefHost
