#pragma once

#include <cstdint>
#include <optional>

namespace Quillon::Cli {

/// Finds frames that are missing among frames that follow each other at one rate. A clip whose
/// times vary is not judged.
class SteadyTimes {
 public:
  /// `framesPerSecond` is 0 where the clip does not tell.
  explicit SteadyTimes(double framesPerSecond);

  /// How many frames are found to be missing before the one at this time; frames come in the order
  /// in which they are shown.
  std::int64_t MissingBefore(double seconds);

 private:
  double rate_;
  std::optional<double> last_;
  int steady_ = 0;            ///< gaps of one frame so far
  std::int64_t pending_ = 0;  ///< missing, and not told before the clip is known to be steady
};

}  // namespace Quillon::Cli
