#include "tonemap/PQTransfer.h"

namespace Quillon {

namespace {
constexpr int kSt2084Transfer = 16;  // ITU-T H.273, table 3
}  // namespace

CHR::TransferFunction ObtainPQSignalToLinear() {
  return CHR::GetSignalToLinearTransferFn(kSt2084Transfer, 0);
}

CHR::TransferFunction ObtainPQLinearToSignal() {
  return CHR::GetLinearToSignalTransferFn(kSt2084Transfer, 0);
}

const CHR::TransferFunction kPQSignalToLinear = ObtainPQSignalToLinear();
const CHR::TransferFunction kPQLinearToSignal = ObtainPQLinearToSignal();

}  // namespace Quillon
