#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace Quillon {
namespace [[gnu::visibility("default")]] Mapper {

/// What went wrong, for a program to act on.
enum class Code {
  InvalidArgument,  ///< a value that means nothing: a size of 0, a plane that is null
  UnknownColors,    ///< the source does not say which colour space it is in
  UnknownPeak,      ///< the source does not say how bright it gets, and nobody measured it
  NotSupported,     ///< a colour space, format or size that cannot be converted
  NoDevice,         ///< the device is not there, or cannot run the kernels
  EngineRefused,    ///< the engine ended with a code of failure, which the message has
  DeviceFailed,     ///< pixels did not get to the device or back
};

/// A failure as a value. Functions of this library throw nothing of their own; what the host throws
/// (std::bad_alloc where memory runs out) passes through.
struct Error {
  Code code = Code::InvalidArgument;
  /// A sentence without its full stop, for people: "no conversion to CICP 9/17/0".
  std::string message;
  /// What the engine and its host said in their trace meanwhile, separated by "; ". May be empty.
  std::string trace;
};

/// A value, or why there is none. To ask for the one that is not there is undefined.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : content_(std::move(value)) {}  // NOLINT(google-explicit-constructor)
  Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}  // NOLINT

  explicit operator bool() const { return content_.index() == 0; }
  T& operator*() { return *std::get_if<0>(&content_); }
  const T& operator*() const { return *std::get_if<0>(&content_); }
  T* operator->() { return std::get_if<0>(&content_); }
  const T* operator->() const { return std::get_if<0>(&content_); }
  const Error& error() const { return *std::get_if<1>(&content_); }

 private:
  std::variant<T, Error> content_;
};

/// Nothing: it is done. Else why it is not.
using Failure = std::optional<Error>;

}  // namespace Mapper
}  // namespace Quillon
