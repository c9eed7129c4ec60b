#pragma once

#include <string>
#include <utility>

#include "mapper/Result.h"

namespace Quillon::Cli {

/// Throws the CommandError for a failure of the mapper: its message and what was traced, with
/// `subject` before them where the engine refused.
[[noreturn]] void FailMapping(const Mapper::Error& error, const std::string& subject = {});

/// The value. Throws CommandError where there is none.
template <class T>
T ValueOf(Mapper::Result<T> result) {
  if (!result) FailMapping(result.error());
  return *std::move(result);
}

}  // namespace Quillon::Cli
