#include "base/DefaultFloatingPoint.h"

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace Quillon {

// In a file of its own: nothing is computed across a call that the compiler cannot look into.

#if defined(__SSE2__)

DefaultFloatingPoint::DefaultFloatingPoint() noexcept : callers_(_mm_getcsr()) {
  constexpr unsigned kAtReset = 0x1F80;  // Intel 64 and IA-32 Architectures, volume 1, 10.2.3
  _mm_setcsr(kAtReset);
}

DefaultFloatingPoint::~DefaultFloatingPoint() { _mm_setcsr(callers_); }

#else

DefaultFloatingPoint::DefaultFloatingPoint() noexcept : callers_() {
  std::fegetenv(&callers_);
  std::fesetenv(FE_DFL_ENV);
}

DefaultFloatingPoint::~DefaultFloatingPoint() { std::fesetenv(&callers_); }

#endif

}  // namespace Quillon
