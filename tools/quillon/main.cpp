#include <CLI/CLI.hpp>
#include <array>
#include <cstdio>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/quillon/io/StandardStreams.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/options/Commands.h"
#include "tools/quillon/options/SharedOptions.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/process/Interrupt.h"

namespace Quillon::Cli {

namespace {

ExitCode ExitCodeOf(StillErrorKind kind) {
  switch (kind) {
    case StillErrorKind::CannotRead:
      return ExitCode::CannotRead;
    case StillErrorKind::NotSupported:
      return ExitCode::NotSupported;
    case StillErrorKind::CannotWrite:
      break;
  }
  return ExitCode::CannotWrite;
}

/// `--name=` would take the next word for its value.
void RefuseEmptyAssignments(std::span<char*> words) {
  for (const std::string_view word : words) {
    if (word == "--") return;
    if (!word.starts_with("--") || !word.ends_with('=')) continue;
    throw CommandError(ExitCode::Usage, std::string(word) + ": the value is empty; give one");
  }
}

/// Reads the command line, runs the command and tells which files it wrote. Throws CommandError,
/// StillError, or a host's exception.
std::vector<std::filesystem::path> RunCommandLine(int argc, char** argv) {
  CLI::App app("Tone mapping and gamut mapping of HDR pictures", "quillon");
  app.set_version_flag("--version", "quillon " QUILLON_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Exit codes: 0 done; 1 internal error; 2 usage; 3 input cannot be read; 4 not supported;\n"
      "5 output cannot be written; 6 the engine refused; 130 stopped by Ctrl-C; 143 by SIGTERM.\n"
      "'quillon COMMAND --help' tells the options of a command.");
  const std::array<std::pair<const char*, Subcommand>, 7> commands = {{
      {"map", AddMapCommand(app)},
      {"chart", AddChartCommand(app)},
      {"curve", AddCurveCommand(app)},
      {"compare", AddCompareCommand(app)},
      {"inspect", AddInspectCommand(app)},
      {"lut", AddLutCommand(app)},
      {"devices", AddDevicesCommand(app)},
  }};
  RefuseEmptyValues(app);
  RefuseEmptyAssignments(std::span(argv, static_cast<std::size_t>(argc)));
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& asked) {  // for help or the version
    app.exit(asked);
    return {};
  } catch (const CLI::ParseError& error) {
    throw CommandError(ExitCode::Usage, std::string(error.what()) + "; --help tells more");
  }
  for (const auto& [name, run] : commands) {
    if (app.got_subcommand(name)) return run();
  }
  return {};
}

int Fail(ExitCode code, const char* message) {
  std::fprintf(stderr, "quillon: %s\n", message);
  return static_cast<int>(code);
}

}  // namespace

}  // namespace Quillon::Cli

/// Every failure ends as one line and an exit code.
int main(int argc, char** argv) {
  using namespace Quillon::Cli;
  PrepareStandardStreams();
  EndOnSignals();
  try {
    RequireAllPrinted(RunCommandLine(argc, argv));
    return static_cast<int>(ExitCode::Success);
  } catch (const CommandError& error) {
    return Fail(error.Code(), error.what());
  } catch (const StillError& error) {
    return Fail(ExitCodeOf(error.Kind()), error.what());
  } catch (const std::bad_alloc&) {
    return Fail(ExitCode::NotSupported, "not enough memory for a picture of this size");
  } catch (const std::exception& error) {
    return Fail(ExitCode::Internal, error.what());
  }
}
