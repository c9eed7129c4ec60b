#pragma once

#include <array>
#include <cstdint>
#include <string_view>

// Names of interfaces. They are made of the names of types, so that there is no table of numbers to
// keep; a host and an engine that were built by two compilers agree on them all the same.
//
// All of it is evaluated when a program is compiled, and may be called on any thread.

namespace orvcore::utility {

/// A 128-bit identity. The engine passes one to be filled and does not look at it.
struct Guid {
  std::array<std::uint8_t, 16> bytes{};
  friend bool operator==(const Guid&, const Guid&) = default;
};
static_assert(sizeof(Guid) == 16);

namespace detail {

// Not for use by hosts.

/// The text of this function's own signature, which names T in full.
template <class T>
constexpr std::string_view FunctionName() {
#if defined(_MSC_VER)
  return __FUNCSIG__;
#else
  return __PRETTY_FUNCTION__;
#endif
}

/// Cuts the type's name out of a signature text: what stands between "<struct " and ">(void)",
/// or, in the spelling of GCC and Clang, between "T = " and the next ';' or ']'. Interfaces are
/// structs for this reason: a class would be spelt otherwise by some compilers.
///
///   "... FunctionName<struct KS::IGPUVideoFrame>(void)"             as some compilers spell it
///   "... FunctionName() [with T = KS::IGPUVideoFrame; ...]"         GCC
///   "... FunctionName() [T = KS::IGPUVideoFrame]"                   Clang
///
/// `signature` must be one of these; the result is a part of it, and lives as long.
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

/// Qualified name of an interface type, the key of the interface query: the namespace and the name,
/// without "struct" and without a leading "::". A host may compare with these texts themselves.
/// The engine asks for
///   "KS::IGPUVideoFrame"                    on a GPU, exactly when it has this
///   "KS::IVideoFrameMemoryAccess"           pixels in system memory
///   "KS::IVideoFrame2DPixelMemoryAccess"    row bytes, before those of any other
///   "KS::IGPUVideoFrameMemoryAccess"        pixels in a device's memory
///   "KS::ICompletionEventVideoFrame"        asked for and not used
template <class T>
constexpr std::string_view QualifiedName() {
  return detail::TypeNameInSignature(detail::FunctionName<T>());
}

}  // namespace orvcore::utility
