#include "tests/campaign/Verdict.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array kFailures = {2, 3, 4, 5, 6, 130, 143};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

/// The option parser's own refusals end with a hint; all others are a sentence of ours.
bool HasSentence(const std::string& text) {
  return text.starts_with("quillon: ") || Contains(text, "\nquillon: ") || Contains(text, "--help");
}

}  // namespace

void Verdict::RequireDecentEnd(const RunOutcome& run) {
  if (run.hung) return Wrong("it hung");
  if (run.exitCode < 0) return Wrong("signal " + std::to_string(-run.exitCode) + " ended it");
  for (const char* finding : {"Sanitizer", "runtime error:", "terminate called"}) {
    if (Contains(run.err, finding)) return Wrong("finding: " + Shortened(run.err));
  }
  if (!kSanitized && run.peakBytes > kMostBytes) {
    Wrong("it took " + std::to_string(run.peakBytes >> 20) + " MiB");
  }
  if (run.exitCode == 0) return;
  if (std::find(kFailures.begin(), kFailures.end(), run.exitCode) == kFailures.end()) {
    return Wrong("it ended with " + std::to_string(run.exitCode) + ": " + Shortened(run.err));
  }
  if (!HasSentence(run.err)) {
    Wrong("code " + std::to_string(run.exitCode) + " without a sentence: " + Shortened(run.err));
  }
}

void Verdict::RequireCode(const RunOutcome& run, std::initializer_list<int> codes) {
  if (std::find(codes.begin(), codes.end(), run.exitCode) != codes.end()) return;
  Wrong("code " + std::to_string(run.exitCode) + " is not one of this case: " + Shortened(run.err));
}

void Verdict::RequireBlame(const RunOutcome& run, const std::vector<std::string>& right,
                           const std::vector<std::string>& wrongBlame) {
  if (run.exitCode <= 0) return;
  const auto tells = [&run](const std::string& words) { return Contains(run.err, words); };
  if (!std::any_of(right.begin(), right.end(), tells)) {
    Wrong("it does not tell what is wrong: " + Shortened(run.err));
  }
  const auto blames = std::find_if(wrongBlame.begin(), wrongBlame.end(), tells);
  if (blames != wrongBlame.end()) Wrong("it blames '" + *blames + "': " + Shortened(run.err));
}

std::string Shortened(const std::string& text) {
  constexpr std::size_t kLength = 1500;
  return text.size() <= kLength ? text : text.substr(0, kLength) + "...";
}
