#include <string>

#include "host/orvcore/Config.h"
#include "host/orvcore/Debug.h"
#include "tests/host/Describe.h"
#include "tests/host/Host.h"

using scripted::Arguments;
using scripted::Host;

namespace orvcore::config {

void DoThrowNullPtrException(std::string_view typeName) {
  Host::Instance().Enter("orvcore::config::DoThrowNullPtrException", std::string(typeName));
  throw scripted::NullHandleException(std::string(typeName));
}

}  // namespace orvcore::config

namespace orvcore::debug {

namespace {

/// Line ends as they are written in source.
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\r') {
      escaped += "\\r";
    } else if (c == '\n') {
      escaped += "\\n";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

}  // namespace

void Trace(int level, std::string_view category, std::string_view message) {
  const bool normal = Host::Instance()
                          .Enter("orvcore::debug::Trace", Arguments(level, std::string(category),
                                                                    "\"" + Escaped(message) + "\""))
                          .IsNormal();
  if (normal) Host::Instance().Deliver({level, std::string(category), std::string(message)});
}

bool TraceEnabled(std::string_view category, int level, bool includeParents) {
  const bool normal = Host::Instance()
                          .Enter("orvcore::debug::TraceEnabled",
                                 Arguments(std::string(category), level, includeParents))
                          .IsNormal();
  return normal && Host::Instance().results.traceEnabled;
}

std::int32_t TraceChangeCount() {
  const bool normal = Host::Instance().Enter("orvcore::debug::TraceChangeCount", {}).IsNormal();
  return normal ? Host::Instance().results.traceChangeCount : 0;
}

std::string GetTypeName(const std::type_info& type) {
  const bool normal =
      Host::Instance().Enter("orvcore::debug::GetTypeName", std::string(type.name())).IsNormal();
  return normal ? "type " + std::string(type.name()) : std::string();
}

}  // namespace orvcore::debug
