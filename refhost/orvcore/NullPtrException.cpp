#include "refhost/orvcore/NullPtrException.h"

#include "host/orvcore/Config.h"

namespace orvcore::config {

NullPtrException::NullPtrException(const std::string& typeName)
    : std::runtime_error("null handle of " + typeName) {}

void DoThrowNullPtrException(std::string_view typeName) {
  throw NullPtrException(std::string(typeName));
}

}  // namespace orvcore::config
