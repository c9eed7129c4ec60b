#include "refhost/ironlane/cuda/CudaContext.h"

#include <algorithm>
#include <array>

#include "refhost/ironlane/Trace.h"

namespace RefHost {

bool EndsContext(CudaResult result) {
  // Deinitialised, uncorrectable memory and links, illegal addresses and instructions, time-outs,
  // assertions, a context that is gone, and launches that failed without telling why.
  constexpr std::array<CudaResult, 14> kErrors = {4,   214, 220, 226, 700, 702, 709,
                                                  710, 714, 715, 716, 717, 718, 719};
  return std::find(kErrors.begin(), kErrors.end(), result) != kErrors.end();
}

bool CudaContext::IsLost() const {
  const std::lock_guard lock(mutex_);
  return loss_.has_value();
}

int CudaContext::Check(CudaResult result, const std::string& what) {
  const int code = api_.Check(result, what);
  if (!EndsContext(result)) return code;
  const std::lock_guard lock(mutex_);
  if (!loss_.has_value()) loss_ = api_.NameOf(result) + " of " + what;
  return kDeviceLost;
}

int CudaContext::Enter() { return Check(api_.CtxPushCurrent(handle_), "cuCtxPushCurrent"); }

void CudaContext::Leave() {
  CudaContextHandle popped = nullptr;
  Check(api_.CtxPopCurrent(&popped), "cuCtxPopCurrent");
}

int CudaContext::TellLoss() const {
  const std::lock_guard lock(mutex_);
  TraceMessage("CUDA : " + device_ + " is lost since " + loss_.value_or("") + " : open it again");
  return kDeviceLost;
}

}  // namespace RefHost
