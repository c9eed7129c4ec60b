#include "tools/quillon/curve/CurveOptions.h"

#include <algorithm>
#include <exception>

#include "tools/quillon/curve/CurveOutputs.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

using Mapper::Algorithm;

namespace {

/// An option has an effect as soon as one of the curves follows it; those of `hue` and `car` follow
/// all that others do.
void CheckEffects(const CurveOptions& options) {
  std::exception_ptr refusal;
  for (const Algorithm algorithm : options.algorithms) {
    try {
      CheckMappingOptions(MappingFor(options, algorithm));
      return;
    } catch (const CommandError&) {
      if (!refusal) refusal = std::current_exception();
    }
  }
  if (refusal) std::rethrow_exception(refusal);
}

}  // namespace

MappingOptions MappingFor(const CurveOptions& options, Algorithm algorithm) {
  MappingOptions mapping = options.mapping;
  mapping.settings.algorithm = algorithm;
  return mapping;
}

void CheckCurveOptions(const CurveOptions& options) {
  CheckEffects(options);
  for (auto output = options.outputs.begin(); output != options.outputs.end(); ++output) {
    if (std::find(options.outputs.begin(), output, *output) != output) {
      throw CommandError(ExitCode::Usage, output->string() + " is named twice; name it once");
    }
    CheckCurveTarget(*output, options.overwrite);
  }
}

}  // namespace Quillon::Cli
