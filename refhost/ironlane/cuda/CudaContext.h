#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "refhost/ResultCodes.h"
#include "refhost/ironlane/cuda/CudaApi.h"

namespace RefHost {

/// A device's primary context, retained, and current during calls alone. Some errors end a context:
/// then no call reaches the driver any more, and each gives the same code and message. Any thread
/// may call.
class CudaContext {
 public:
  /// Takes over the retained context. `device` is its name in messages.
  CudaContext(const CudaApi& api, CudaDeviceId id, CudaContextHandle handle, std::string device)
      : api_(api), id_(id), handle_(handle), device_(std::move(device)) {}
  CudaContext(const CudaContext&) = delete;
  CudaContext& operator=(const CudaContext&) = delete;
  ~CudaContext() { api_.Check(api_.DevicePrimaryCtxRelease(id_), "cuDevicePrimaryCtxRelease"); }

  const CudaApi& Api() const { return api_; }
  bool IsLost() const;

  /// The code of driver calls that `function` makes in the context. It returns the driver's result;
  /// `what` names them in messages.
  template <class Function>
  int Call(const std::string& what, const Function& function) {
    if (IsLost()) return TellLoss();
    if (const int result = Enter(); result < 0) return result;
    const CudaResult result = function();
    Leave();
    return Check(result, what);
  }

  /// 0, or the code of a call in the context, and a message to the trace.
  int Check(CudaResult result, const std::string& what);

 private:
  int Enter();
  void Leave();
  int TellLoss() const;

  const CudaApi& api_;
  const CudaDeviceId id_;
  CudaContextHandle const handle_;
  const std::string device_;
  mutable std::mutex mutex_;
  std::optional<std::string> loss_;  ///< what ended it
};

/// Whether no context survives an error.
bool EndsContext(CudaResult result);

}  // namespace RefHost
