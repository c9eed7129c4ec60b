#include "refhost/ironlane/Trace.h"

#include <string>

#include "host/orvcore/Debug.h"

namespace RefHost {

void TraceMessage(std::string_view text) {
  constexpr int kLevel = 7;
  constexpr std::string_view kCategory = "Ironlane";
  if (!orvcore::debug::TraceEnabled(kCategory, kLevel, true)) return;
  orvcore::debug::Trace(kLevel, kCategory, std::string(text) + "\r\n");
}

}  // namespace RefHost
