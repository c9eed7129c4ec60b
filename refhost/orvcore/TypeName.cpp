#include <cstdlib>
#include <memory>

#include <cxxabi.h>

#include "host/orvcore/Debug.h"

namespace orvcore::debug {

namespace {

struct Free {
  void operator()(char* text) const {
    std::free(text);  // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
  }
};

}  // namespace

std::string GetTypeName(const std::type_info& type) {
  int status = 0;
  const std::unique_ptr<char, Free> readable(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status));
  return status == 0 ? readable.get() : type.name();
}

}  // namespace orvcore::debug
