#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "mapper/EngineMessages.h"
#include "refhost/ironlane/Devices.h"
#include "tools/quillon/options/Commands.h"

namespace Quillon::Cli {

namespace {

std::string Memory(std::uint64_t bytes) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(1) << static_cast<double>(bytes) / (1U << 30U) << " GiB";
  return text.str();
}

/// Whether the kernels build there, found out by building them.
std::string Kernels(const RefHost::DeviceInfo& info) {
  if (!info.obstacle.empty()) return "no: " + info.obstacle;
  const Mapper::EngineMessages messages;
  const auto device = RefHost::OpenDevice(info.platformKind, info.ordinal);
  if (device == nullptr || !RefHost::BuildsKernels(*device))
    return "do not build: " + messages.Joined();
  return info.isExact ? "build, exact" : "build; the last bits may differ from the processor's";
}

using Row = std::array<std::string, 6>;

std::vector<Row> Rows() {
  std::vector<Row> rows = {{"device", "name", "platform", "driver", "memory", "kernels"}};
  for (const RefHost::DeviceInfo& info : RefHost::ListDevices()) {
    rows.push_back({RefHost::DeviceName(info.platformKind, info.ordinal), info.name, info.platform,
                    info.driver, Memory(info.memoryBytes), Kernels(info)});
  }
  return rows;
}

void PrintTable(std::ostream& out, const std::vector<Row>& rows) {
  std::array<std::size_t, std::tuple_size_v<Row>> widths{};
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  for (const Row& row : rows) {
    for (std::size_t i = 0; i + 1 < row.size(); ++i) {
      out << std::left << std::setw(static_cast<int>(widths[i]) + 2) << row[i];
    }
    out << row.back() << '\n';
  }
}

void RunDevices() {
  const std::vector<Row> rows = Rows();
  if (rows.size() > 1) {
    PrintTable(std::cout, rows);
  } else {
    std::cout << "no GPU was found; --device cpu, the default, needs none\n";
  }
  if (!RefHost::IsBuiltForCuda()) {
    std::cout << "the CUDA back end was left out: neither nvcc nor clang++ was there when this was "
                 "built\n";
  }
}

}  // namespace

Subcommand AddDevicesCommand(CLI::App& app) {
  app.add_subcommand("devices", "List the GPUs that --device takes, and whether kernels run there");
  return [] {
    RunDevices();
    return std::vector<std::filesystem::path>();
  };
}

}  // namespace Quillon::Cli
