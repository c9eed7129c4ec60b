#pragma once

#include "host/chromant/TransferFunctions.h"

namespace Quillon {

/// The process-wide SMPTE ST 2084 functions of the host, obtained when the library is loaded: PQ
/// code value to nits and back. Empty when the host has none.
extern const CHR::TransferFunction kPQSignalToLinear;
extern const CHR::TransferFunction kPQLinearToSignal;

/// Ask the host anew.
CHR::TransferFunction ObtainPQSignalToLinear();
CHR::TransferFunction ObtainPQLinearToSignal();

}  // namespace Quillon
