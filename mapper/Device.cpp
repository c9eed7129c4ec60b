#include "mapper/Device.h"

#include "mapper/EngineMessages.h"
#include "refhost/ironlane/Devices.h"

namespace Quillon::Mapper {

bool IsDeviceName(std::string_view text) {
  return text == "cpu" || text == "gpu" || RefHost::ParseDeviceName(text).has_value();
}

Result<std::shared_ptr<Device>> OpenDevice(std::string_view name) {
  if (name == "cpu") return std::shared_ptr<Device>();
  const auto parsed = RefHost::ParseDeviceName(name);
  if (name != "gpu" && !parsed) {
    return Error{
        Code::InvalidArgument, "'" + std::string(name) + "' is none of " + kDeviceSyntax, {}};
  }
  const EngineMessages messages;
  auto device = parsed ? RefHost::OpenDevice(parsed->platformKind, parsed->ordinal)
                       : RefHost::OpenFirstDevice();
  if (device != nullptr) return device;
  const std::string wrong =
      parsed ? "there is no such device" : "there is no GPU that can run the kernels";
  return Error{Code::NoDevice, wrong, messages.Joined()};
}

std::string DeviceName(const Device* device) {
  if (device == nullptr) return "cpu";
  return RefHost::DeviceName(device->Info().platformKind, device->Info().ordinal);
}

}  // namespace Quillon::Mapper
