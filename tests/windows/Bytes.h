#pragma once

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string_view>

/// A number of a file, little-endian as this processor is. Throws std::runtime_error beyond the
/// end.
template <class Number>
Number ReadNumber(std::string_view bytes, std::size_t at) {
  if (at > bytes.size() || bytes.size() - at < sizeof(Number)) {
    throw std::runtime_error("the file ends too early");
  }
  Number number;
  std::memcpy(&number, bytes.data() + at, sizeof(number));
  return number;
}

/// The text at a place, up to its null.
inline std::string_view ReadText(std::string_view bytes, std::size_t at) {
  const std::size_t end = bytes.find('\0', at);
  if (end == std::string_view::npos) throw std::runtime_error("a text does not end");
  return bytes.substr(at, end - at);
}
