#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace Quillon::Cli {

enum class StillErrorKind { CannotRead, NotSupported, CannotWrite };

/// A still picture could not be read or written. The message is one line for the user: the file,
/// what is wrong with it, and what to do about it.
class StillError : public std::runtime_error {
 public:
  StillError(StillErrorKind kind, const std::filesystem::path& file, const std::string& wrong,
             const std::string& remedy)
      : std::runtime_error(file.string() + ": " + wrong + "; " + remedy), kind_(kind) {}

  StillErrorKind Kind() const { return kind_; }

 private:
  StillErrorKind kind_;
};

}  // namespace Quillon::Cli
