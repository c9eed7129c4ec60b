#pragma once

#include <string_view>

namespace orvcore::config {

/// Raises the host's null-handle exception. `typeName` is the text of
/// `debug::GetTypeName` for the interface whose handle was not usable.
[[noreturn]] void DoThrowNullPtrException(std::string_view typeName);

}  // namespace orvcore::config
