#include "refhost/ironlane/cuda/PtxText.h"

#include <charconv>

namespace RefHost {

namespace {

/// The number that follows a word, and what follows the number.
std::optional<int> NumberAfter(std::string_view word, std::string_view& text) {
  const auto at = text.find(word);
  if (at == std::string_view::npos) return std::nullopt;
  text.remove_prefix(at + word.size());
  int number = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(rest - text.data()));
  return number;
}

}  // namespace

std::optional<PtxNeeds> NeedsOf(std::string_view ptx) {
  // CUDA 11.n came with PTX 7.n, and so on; some versions of CUDA brought no new one.
  constexpr int kCudaAhead = 4;
  const auto major = NumberAfter("\n.version ", ptx);
  const auto minor = NumberAfter(".", ptx);
  const auto target = NumberAfter("\n.target sm_", ptx);
  if (!major.has_value() || !minor.has_value() || !target.has_value()) return std::nullopt;
  return PtxNeeds{{*major + kCudaAhead, *minor}, {*target / 10, *target % 10}};
}

}  // namespace RefHost
