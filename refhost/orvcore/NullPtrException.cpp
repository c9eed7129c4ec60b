#include "refhost/orvcore/NullPtrException.h"

#include "host/orvcore/Config.h"

namespace RefHost {

NullPtrException::NullPtrException(const std::string& typeName)
    : std::runtime_error("null handle of " + typeName) {}

}  // namespace RefHost

namespace orvcore::config {

void DoThrowNullPtrException(std::string_view typeName) {
  throw RefHost::NullPtrException(std::string(typeName));
}

}  // namespace orvcore::config
