#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace orvcore::utility {

/// A 128-bit identity.
struct Guid {
  std::array<std::uint8_t, 16> bytes{};
  friend bool operator==(const Guid&, const Guid&) = default;
};
static_assert(sizeof(Guid) == 16);

namespace detail {

/// The compiler's own text for this function's signature, which names T in full.
template <class T>
constexpr std::string_view FunctionName() {
#if defined(_MSC_VER)
  return __FUNCSIG__;
#else
  return __PRETTY_FUNCTION__;
#endif
}

/// Cuts the type's name out of a signature text: what stands between "<struct " and ">(void)",
/// or, in the spelling of GCC and Clang, between "T = " and the next ';' or ']'.
constexpr std::string_view TypeNameInSignature(std::string_view signature) {
  constexpr std::string_view kOpen = "<struct ";
  constexpr std::string_view kOpenGnu = "T = ";
  if (const auto open = signature.find(kOpen); open != std::string_view::npos) {
    const auto first = open + kOpen.size();
    return signature.substr(first, signature.find(">(void)", first) - first);
  }
  const auto first = signature.find(kOpenGnu) + kOpenGnu.size();
  return signature.substr(first, signature.find_first_of(";]", first) - first);
}

}  // namespace detail

/// Qualified name of an interface type, "KS::IGPUVideoFrame" for example: the key of the
/// interface query.
template <class T>
constexpr std::string_view QualifiedName() {
  return detail::TypeNameInSignature(detail::FunctionName<T>());
}

}  // namespace orvcore::utility
