#pragma once

#include <functional>

namespace CHR {

/// Works in place on three floats. With scale 1.0, linear values are in nits and signals run from
/// 0 to 1.
using TransferFunction = std::function<void(float* pixel, float scale)>;

/// Decoding (signal to linear) and encoding (linear to signal) of an ITU-T H.273 transfer
/// characteristic. The engine asks for 16, SMPTE ST 2084, with video colorimetry 0. Empty when
/// there is none.
TransferFunction GetSignalToLinearTransferFn(int transferCharacteristic, int videoColorimetry);
TransferFunction GetLinearToSignalTransferFn(int transferCharacteristic, int videoColorimetry);

}  // namespace CHR
