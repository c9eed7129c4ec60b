#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <typeinfo>

namespace orvcore::debug {

/// Hands one message to the host's trace. Any thread.
void Trace(int level, std::string_view category, std::string_view message);

/// Whether messages of this category and level reach anyone. The answer holds until
/// `TraceChangeCount` moves. The engine always passes true for `includeParents`: a category
/// inherits what was set for all categories.
bool TraceEnabled(std::string_view category, int level, bool includeParents);

/// Grows whenever the tracing settings change, so that a call site may cache `TraceEnabled`.
std::int32_t TraceChangeCount();

/// Readable name of a type, for messages.
std::string GetTypeName(const std::type_info& type);

}  // namespace orvcore::debug
