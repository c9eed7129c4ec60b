#pragma once

#include <stdexcept>
#include <string>

namespace RefHost {

/// A handle was dereferenced that is not usable.
class NullPtrException : public std::runtime_error {
 public:
  explicit NullPtrException(const std::string& typeName);
};

}  // namespace RefHost
