#pragma once

#include <memory>
#include <string>

#include "host/ironlane/Device.h"
#include "tests/host/Host.h"
#include "tests/host/Inventory.h"

namespace scripted {

/// What a scripted device is made of.
struct DeviceSetup {
  std::string name = "device";
  std::int32_t platformKind = 1;
  std::int32_t ordinal = 0;
  std::int32_t architectureCode = 0;
  /// 0: one that no other device has had.
  std::uint64_t contextIdentity = 0;
};

/// A GPU whose every operation is recorded under its name. It computes nothing. Its argument sets
/// are named "arguments", and record their release as frames do.
class Device final : public IL::Device {
 public:
  explicit Device(DeviceSetup setup);
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;
  ~Device() = default;

  const DeviceSetup& Setup() const { return setup_; }

  int CreateArguments(IL::KernelHandle kernel, std::uint32_t byValueBytes,
                      orvcore::classref::InterfaceRef<IL::IArgumentSet>& arguments) override;
  int Launch(IL::KernelHandle kernel,
             const orvcore::classref::InterfaceRef<IL::IArgumentSet>& arguments,
             std::uint32_t gridX, std::uint32_t gridY, std::uint32_t blockX, std::uint32_t blockY,
             std::uint32_t flags) override;
  IL::DeviceDescription GetDescription() const override;

 private:
  DeviceSetup setup_;
  Live<Counted::Device> live_;
};

std::shared_ptr<Device> MakeDevice(DeviceSetup setup = {});

/// The device's name, or "none".
std::string NameOfDevice(const std::shared_ptr<IL::Device>& device);

}  // namespace scripted
