#include "tools/quillon/curve/CurveOptions.h"

#include <algorithm>
#include <exception>

#include "tools/quillon/curve/CurveOutputs.h"
#include "tools/quillon/process/ExitCodes.h"

using orvmediatypes::color::ToneMapAlgorithmType;

namespace {

/// An option has an effect as soon as one of the curves follows it; those of `hue` and `car` follow
/// all that others do.
void CheckEffects(const CurveOptions& options) {
  std::exception_ptr refusal;
  for (const ToneMapAlgorithmType algorithm : options.algorithms) {
    try {
      CheckMapOptions(MapOptionsFor(options, algorithm));
      return;
    } catch (const CommandError&) {
      if (!refusal) refusal = std::current_exception();
    }
  }
  if (refusal) std::rethrow_exception(refusal);
}

}  // namespace

MapOptions MapOptionsFor(const CurveOptions& options, ToneMapAlgorithmType algorithm) {
  MapOptions map = options.map;
  map.algorithm = algorithm;
  return map;
}

void CheckCurveOptions(const CurveOptions& options) {
  CheckEffects(options);
  for (auto output = options.outputs.begin(); output != options.outputs.end(); ++output) {
    if (std::find(options.outputs.begin(), output, *output) != output) {
      throw CommandError(ExitCode::Usage, output->string() + " is named twice; name it once");
    }
    CheckCurveTarget(*output, options.map.overwrite);
  }
}
