#pragma once

#include <stdexcept>
#include <string>

namespace Quillon::Cli {

/// Exit codes of the command line.
enum class ExitCode : int {
  Success = 0,
  Internal = 1,
  Usage = 2,
  CannotRead = 3,
  NotSupported = 4,
  CannotWrite = 5,
  EngineRefused = 6,
  Interrupted = 130,  ///< by SIGINT, which Ctrl-C is
  Terminated = 143,   ///< by SIGTERM
};

/// Ends a command with an exit code and a sentence for the user.
class CommandError : public std::runtime_error {
 public:
  CommandError(ExitCode code, const std::string& message)
      : std::runtime_error(message), code_(code) {}
  ExitCode Code() const { return code_; }

 private:
  ExitCode code_;
};

/// Throws CommandError (Usage) where the condition holds.
inline void RefuseUsage(bool condition, const std::string& sentence) {
  if (condition) throw CommandError(ExitCode::Usage, sentence);
}

}  // namespace Quillon::Cli
