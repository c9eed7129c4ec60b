#include "tools/quillon/process/MapperErrors.h"

#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

using Mapper::Code;

namespace {

ExitCode ExitCodeOf(Code code) {
  switch (code) {
    case Code::UnknownColors:
      return ExitCode::CannotRead;
    case Code::UnknownPeak:
      return ExitCode::Usage;
    case Code::NotSupported:
    case Code::NoDevice:
      return ExitCode::NotSupported;
    case Code::EngineRefused:
    case Code::DeviceFailed:
      return ExitCode::EngineRefused;
    case Code::InvalidArgument:
      break;
  }
  return ExitCode::Internal;
}

}  // namespace

void FailMapping(const Mapper::Error& error, const std::string& subject) {
  std::string message = error.message;
  if (!error.trace.empty()) message += ": " + error.trace;
  if (!subject.empty() && error.code == Code::EngineRefused) message = subject + ": " + message;
  if (error.code == Code::NoDevice) message += "; --device cpu maps it in system memory";
  throw CommandError(ExitCodeOf(error.code), message);
}

}  // namespace Quillon::Cli
