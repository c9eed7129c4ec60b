#pragma once

#include <filesystem>
#include <functional>
#include <vector>

namespace CLI {
class App;
}

namespace Quillon::Cli {

/// Each adds its subcommand with its options to the command line and returns what to run once the
/// command line has been read. What runs returns the files that it wrote, and throws CommandError,
/// StillError or a host's exception.
using Subcommand = std::function<std::vector<std::filesystem::path>()>;
Subcommand AddMapCommand(CLI::App& app);
Subcommand AddChartCommand(CLI::App& app);
Subcommand AddCurveCommand(CLI::App& app);
Subcommand AddCompareCommand(CLI::App& app);
Subcommand AddLutCommand(CLI::App& app);
Subcommand AddDevicesCommand(CLI::App& app);
Subcommand AddInspectCommand(CLI::App& app);

}  // namespace Quillon::Cli
