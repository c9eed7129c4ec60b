#include "tools/quillon/DeviceChoice.h"

#include <CLI/CLI.hpp>
#include <array>
#include <string_view>
#include <utility>

#include "refhost/ironlane/Devices.h"
#include "tools/quillon/EngineMessages.h"
#include "tools/quillon/options/Numbers.h"
#include "tools/quillon/process/ExitCodes.h"

namespace {

constexpr std::array<std::pair<std::string_view, DeviceChoice::Kind>, 2> kNumbered = {
    {{"opencl:", DeviceChoice::Kind::OpenCl}, {"cuda:", DeviceChoice::Kind::Cuda}}};

IL::DeviceInfo InfoOf(const DeviceChoice& choice) {
  IL::DeviceInfo info;
  info.platformKind =
      choice.kind == DeviceChoice::Kind::Cuda ? IL::kPlatformCuda : IL::kPlatformOpenCl;
  info.ordinal = choice.ordinal;
  return info;
}

/// The first device that runs the kernels.
std::shared_ptr<IL::GpuDevice> OpenFirstDevice() {
  auto device = IL::OpenFirstDevice();
  if (device != nullptr) return device;
  throw CommandError(ExitCode::NotSupported,
                     "--device gpu: there is no GPU that can run the kernels; 'quillon devices' "
                     "tells why, and --device cpu works everywhere");
}

}  // namespace

DeviceChoice ParseDevice(const std::string& text) {
  if (text == "cpu") return {};
  if (text == "gpu") return {.kind = DeviceChoice::Kind::AnyGpu};
  for (const auto& [prefix, kind] : kNumbered) {
    if (!text.starts_with(prefix)) continue;
    const auto ordinal = ParseNumber<std::uint32_t>(std::string_view(text).substr(prefix.size()));
    if (ordinal && std::in_range<std::int32_t>(*ordinal)) {
      return {.kind = kind, .ordinal = static_cast<std::int32_t>(*ordinal)};
    }
  }
  throw CLI::ValidationError("--device", "'" + text + "' is none of " + kDeviceSyntax +
                                             ", N being a number that 'quillon devices' shows");
}

std::string DeviceName(const IL::DeviceInfo& info) {
  return IL::DeviceName(info.platformKind, info.ordinal);
}

std::shared_ptr<IL::GpuDevice> OpenChosenDevice(const DeviceChoice& choice) {
  if (choice.kind == DeviceChoice::Kind::Cpu) return nullptr;
  if (choice.kind == DeviceChoice::Kind::AnyGpu) return OpenFirstDevice();
  const IL::DeviceInfo info = InfoOf(choice);
  const EngineMessages messages;
  auto device = IL::OpenDevice(info.platformKind, info.ordinal);
  if (device == nullptr) {
    const std::string said = messages.Joined();
    throw CommandError(ExitCode::NotSupported,
                       "--device " + DeviceName(info) + ": " +
                           (said.empty() ? "there is no such device" : said) +
                           "; 'quillon devices' lists those there are");
  }
  return device;
}
