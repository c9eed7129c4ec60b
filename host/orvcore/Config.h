#pragma once

#include <string_view>

namespace orvcore::config {

/// Raises the host's null-handle exception, whose type is the host's own. `typeName` is the text of
/// `debug::GetTypeName` for the interface whose handle was not usable, read before it is raised.
/// Never returns. Any thread. The engine catches neither this nor any other exception of the host
/// that a call of its own raised: it passes through `Quillon::ApplyGamutMapping` to the caller.
[[noreturn]] void DoThrowNullPtrException(std::string_view typeName);

}  // namespace orvcore::config
