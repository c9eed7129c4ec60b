#pragma once

#include <functional>

namespace CHR {

/// Decodes or encodes three floats in place, each for itself. With scale 1.0, which the engine
/// passes, linear values are in nits and signals run from 0 to 1. Values beyond are taken, not
/// clamped; not a number stays so. Called from several threads at once, from bands too, on pixels
/// that lie beyond the engine's tables (light below 0 or above 10000 nits, signals outside 0 to 1).
/// The same value gives the same result always.
using TransferFunction = std::function<void(float* pixel, float scale)>;

/// Decoding (signal to linear) and encoding (linear to signal) of an ITU-T H.273 transfer
/// characteristic. The engine asks for 16, SMPTE ST 2084, with video colorimetry 0; both when its
/// library is loaded, before anything else is called, and again later. It holds what it gets until
/// the library is unloaded. Empty when there is none: BT.2390 is then refused with 0xA00F000F, and
/// metadata tells no destination's peak.
TransferFunction GetSignalToLinearTransferFn(int transferCharacteristic, int videoColorimetry);
TransferFunction GetLinearToSignalTransferFn(int transferCharacteristic, int videoColorimetry);

}  // namespace CHR
