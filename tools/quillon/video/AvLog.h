#pragma once

#include <cstdint>
#include <mutex>
#include <string>

namespace Quillon::Cli {

/// Keeps FFmpeg and the encoders under it from writing to standard error of themselves, and hands
/// on what they complain of: some conceal damage without a word in their results.
void QuietAvLog();

/// What a decoder or a container that is read calls an error. It gets them by the `opaque` of its
/// AVCodecContext or AVFormatContext, and has to outlive that. Any thread.
class AvComplaints {
 public:
  void Add(std::string message);
  std::int64_t Count() const;
  /// Empty: there was none.
  std::string Last() const;

 private:
  mutable std::mutex mutex_;
  std::int64_t count_ = 0;
  std::string last_;
};

}  // namespace Quillon::Cli
