#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/types.h>

/// What a run of the command line may take.
struct RunLimits {
  std::chrono::seconds time{120};        ///< then it counts as hung and is killed
  rlim_t fileBytes = RLIM_INFINITY;      ///< files end there, as on a full disk
  std::filesystem::path standardOutput;  ///< a file that takes it; else it is in the outcome
};

/// How a run ended.
struct RunOutcome {
  int exitCode = -1;  ///< below 0: minus the signal that ended it
  bool hung = false;
  std::string out;
  std::string err;
  std::int64_t peakBytes = 0;  ///< the largest resident size
};

/// A run of the built `quillon`, in a process group of its own.
class WatchedRun {
 public:
  explicit WatchedRun(const std::vector<std::string>& arguments, const RunLimits& limits = {});
  ~WatchedRun();
  WatchedRun(const WatchedRun&) = delete;
  WatchedRun& operator=(const WatchedRun&) = delete;

  void Signal(int signal) const;
  /// Whether it ends within a time.
  bool EndsWithin(std::chrono::milliseconds time);
  RunOutcome Wait();

 private:
  /// What comes out of one stream. Pipes, since files would end at `fileBytes`.
  class Stream {
   public:
    Stream();
    ~Stream();
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    int WriteEnd() const { return ends_[1]; }
    void CloseWriteEnd();
    void ReadInto(std::string& text) const;

   private:
    int ends_[2] = {-1, -1};
  };

  void RunChild(const std::vector<std::string>& arguments);
  bool Poll();

  Stream out_;
  Stream err_;
  RunLimits limits_;
  std::chrono::steady_clock::time_point deadline_;
  pid_t process_ = 0;
  bool ended_ = false;
  RunOutcome outcome_;
};
