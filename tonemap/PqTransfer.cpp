#include "tonemap/PqTransfer.h"

namespace Quillon {

namespace {
constexpr int kSt2084Transfer = 16;  // ITU-T H.273, table 3
}  // namespace

CHR::TransferFunction ObtainPqSignalToLinear() {
  return CHR::GetSignalToLinearTransferFn(kSt2084Transfer, 0);
}

CHR::TransferFunction ObtainPqLinearToSignal() {
  return CHR::GetLinearToSignalTransferFn(kSt2084Transfer, 0);
}

const CHR::TransferFunction kPqSignalToLinear = ObtainPqSignalToLinear();
const CHR::TransferFunction kPqLinearToSignal = ObtainPqLinearToSignal();

}  // namespace Quillon
