#include <CLI/CLI.hpp>
#include <cstdio>
#include <new>

#include "tools/quillon/Commands.h"
#include "tools/quillon/ExitCodes.h"
#include "tools/quillon/io/StillError.h"

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

/// Reads the command line and runs the command. Throws CommandError, StillError, or a host's
/// exception.
ExitCode RunCommandLine(int argc, char** argv) {
  CLI::App app("Tone mapping and gamut mapping of HDR pictures", "quillon");
  app.set_version_flag("--version", "quillon " QUILLON_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Exit codes: 0 done; 1 internal error; 2 usage; 3 input cannot be read; 4 not supported;\n"
      "5 output cannot be written; 6 the engine refused; 130 stopped by Ctrl-C.\n"
      "'quillon COMMAND --help' tells the options of a command.");
  const Subcommand map = AddMapCommand(app);
  const Subcommand chart = AddChartCommand(app);
  const Subcommand curve = AddCurveCommand(app);
  const Subcommand compare = AddCompareCommand(app);
  const Subcommand inspect = AddInspectCommand(app);
  const Subcommand lut = AddLutCommand(app);
  const Subcommand devices = AddDevicesCommand(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? ExitCode::Success : ExitCode::Usage;
  }
  if (app.got_subcommand("map")) map();
  if (app.got_subcommand("chart")) chart();
  if (app.got_subcommand("curve")) curve();
  if (app.got_subcommand("compare")) compare();
  if (app.got_subcommand("inspect")) inspect();
  if (app.got_subcommand("lut")) lut();
  if (app.got_subcommand("devices")) devices();
  return ExitCode::Success;
}

int Fail(ExitCode code, const char* message) {
  std::fprintf(stderr, "quillon: %s\n", message);
  return static_cast<int>(code);
}

}  // namespace

/// Every failure ends as one line and an exit code.
int main(int argc, char** argv) {
  try {
    return static_cast<int>(RunCommandLine(argc, argv));
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
