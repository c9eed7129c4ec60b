#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "tests/campaign/WatchedRun.h"

/// What is wrong with a case; nothing is good. Each line is a sentence.
class Verdict {
 public:
  void Wrong(const std::string& sentence) { sentences_.push_back(sentence); }
  void Require(bool condition, const std::string& sentence) {
    if (!condition) Wrong(sentence);
  }

  /// What no run may do: die of a signal that was not sent, hang, end with a code that is not
  /// documented or stands for a bug, fail without one sentence for the user, or take more memory
  /// than `kMostBytes`.
  void RequireDecentEnd(const RunOutcome& run);
  /// The codes that this case may end with.
  void RequireCode(const RunOutcome& run, std::initializer_list<int> codes);
  /// A failure must tell of one of these words, and of none of `wrongBlame`.
  void RequireBlame(const RunOutcome& run, const std::vector<std::string>& right,
                    const std::vector<std::string>& wrongBlame = {});

  bool IsGood() const { return sentences_.empty(); }
  const std::vector<std::string>& Sentences() const { return sentences_; }

 private:
  std::vector<std::string> sentences_;
};

/// The resident size that small inputs never need, without sanitizers.
inline constexpr std::int64_t kMostBytes = std::int64_t{1} << 30;

/// For messages: the first lines of a text.
std::string Shortened(const std::string& text);
