#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <typeinfo>

// The trace. The engine traces failures alone, on the thread of its caller. No answer changes a
// result code. Any thread.

namespace orvcore::debug {

/// Hands one message to the host's trace, which copies what it keeps. The engine passes level 7 and
/// category "Quillon", or "QuillonImpl" for the engine that works in system memory. A message names
/// the operation that failed, and ends with "\r\n".
void Trace(int level, std::string_view category, std::string_view message);

/// Whether messages of this category and level reach anyone. The answer holds until
/// `TraceChangeCount` moves. The engine passes true for `includeParents`: a category inherits what
/// was set for all categories.
bool TraceEnabled(std::string_view category, int level, bool includeParents);

/// Moves whenever the tracing settings change. Each place in the engine that can fail reads it when
/// it fails, and asks `TraceEnabled` anew only where it is not what it was there the last time.
std::int32_t TraceChangeCount();

/// Readable name of a type, for the null-handle exception.
std::string GetTypeName(const std::type_info& type);

}  // namespace orvcore::debug
