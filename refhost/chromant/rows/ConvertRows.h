#pragma once

#include <cstddef>

#include "curves/lanes/InstructionSet.h"
#include "refhost/chromant/ConversionParams.h"
#include "refhost/chromant/rows/RowFunctions.h"

namespace RefHost {

using Quillon::BestInstructionSet;
using Quillon::CanRun;
using Quillon::InstructionSet;

/// `set` must be one that can run.
RowFunctions RowFunctionsOf(InstructionSet set);

/// Converts `count` pixels in place, given as planes, with the same bits as `ConvertPixel`, but
/// for those of a NaN. False,
/// with no pixel touched, when a transfer has no form for rows. `set` must be one that can run.
bool ConvertRows(InstructionSet set, const ConversionParams& params, float* red, float* green,
                 float* blue, std::size_t count);

}  // namespace RefHost
