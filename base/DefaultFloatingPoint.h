#pragma once

#if !defined(__SSE2__)
#include <cfenv>
#endif

namespace Quillon {

/// Puts the calling thread's arithmetic into the mode that the compiler and the curves count on,
/// and back into the caller's at the end of its life: nearest rounding, subnormals kept, no traps.
/// What the caller's flags said of past operations stays as it was.
class DefaultFloatingPoint {
 public:
  DefaultFloatingPoint() noexcept;
  DefaultFloatingPoint(const DefaultFloatingPoint&) = delete;
  DefaultFloatingPoint& operator=(const DefaultFloatingPoint&) = delete;
  ~DefaultFloatingPoint();

 private:
#if defined(__SSE2__)
  unsigned callers_;
#else
  std::fenv_t callers_;
#endif
};

}  // namespace Quillon
