#include "refhost/ironlane/ContextIdentity.h"

#include <atomic>

namespace RefHost {

std::uint64_t NewContextIdentity() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

}  // namespace RefHost
