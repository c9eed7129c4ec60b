#pragma once

#include <cstddef>

#include "refhost/chromant/ConversionParams.h"
#include "refhost/chromant/rows/RowFunctions.h"

namespace CHR {

/// Instruction sets that conversions of rows are built for; the later the wider.
enum class InstructionSet { Baseline, Avx2, Avx512 };

/// Whether this machine can run them. The baseline always runs.
bool CanRun(InstructionSet set);

/// The widest that this machine can run.
InstructionSet BestInstructionSet();

/// `set` must be one that can run.
RowFunctions RowFunctionsOf(InstructionSet set);

/// Converts `count` pixels in place, given as planes, with the same bits as `ConvertPixel`, but
/// for those of a NaN. False,
/// with no pixel touched, when a transfer has no form for rows. `set` must be one that can run.
bool ConvertRows(InstructionSet set, const ConversionParams& params, float* red, float* green,
                 float* blue, std::size_t count);

}  // namespace CHR
