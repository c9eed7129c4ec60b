#include "tests/host/Device.h"

#include <atomic>
#include <mutex>
#include <set>
#include <utility>

#include "tests/host/ArgumentSet.h"
#include "tests/host/Describe.h"

namespace scripted {

namespace {

std::uint64_t NewIdentity() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

/// Names of the kernels that have a handle: a handle is the address of its name.
struct KernelNames {
  std::mutex mutex;
  std::set<std::string, std::less<>> names;
};

KernelNames& KnownKernels() {
  static KernelNames known;
  return known;
}

/// The kernel's name; "none" for null, "other" for a handle of a test's own.
std::string NameOfKernel(IL::KernelHandle kernel) {
  if (kernel == nullptr) return "none";
  const std::scoped_lock lock(KnownKernels().mutex);
  for (const std::string& name : KnownKernels().names) {
    if (&name == kernel) return name;
  }
  return "other";
}

}  // namespace

Device::Device(DeviceSetup setup) : setup_(std::move(setup)) {
  if (setup_.contextIdentity == 0) setup_.contextIdentity = NewIdentity();
}

int Device::CreateArguments(IL::KernelHandle kernel, std::uint32_t byValueBytes,
                            orvcore::classref::InterfaceRef<IL::IArgumentSet>& arguments) {
  const Outcome outcome =
      Host::Instance().Enter(setup_.name + ".CreateArguments",
                             Arguments(NameOfKernel(kernel), std::to_string(byValueBytes)));
  if (outcome.IsNormal() || outcome.code > 0) arguments = MakeArgumentSet();
  return outcome.code;
}

int Device::Launch(IL::KernelHandle kernel,
                   const orvcore::classref::InterfaceRef<IL::IArgumentSet>& arguments,
                   std::uint32_t gridX, std::uint32_t gridY, std::uint32_t blockX,
                   std::uint32_t blockY, std::uint32_t flags) {
  const std::string set = arguments.IsUsable() ? "arguments" : "none";
  const auto number = [](std::uint32_t value) { return std::to_string(value); };
  return Host::Instance()
      .Enter(setup_.name + ".Launch",
             Arguments(NameOfKernel(kernel), set, number(gridX), number(gridY), number(blockX),
                       number(blockY), number(flags)))
      .code;
}

IL::DeviceDescription Device::GetDescription() const {
  if (!Host::Instance().Enter(setup_.name + ".GetDescription", {}).IsNormal()) return {};
  return {.platformKind = setup_.platformKind,
          .ordinal = setup_.ordinal,
          .architectureCode = setup_.architectureCode,
          .contextIdentity = setup_.contextIdentity};
}

std::shared_ptr<Device> MakeDevice(DeviceSetup setup) {
  return std::make_shared<Device>(std::move(setup));
}

std::string NameOfDevice(const std::shared_ptr<IL::Device>& device) {
  return device == nullptr ? "none" : static_cast<const Device&>(*device).Setup().name;
}

IL::KernelHandle HandleOfKernel(std::string_view kernel) {
  const std::scoped_lock lock(KnownKernels().mutex);
  const auto place = KnownKernels().names.emplace(kernel).first;
  return const_cast<std::string*>(&*place);
}

}  // namespace scripted

namespace IL {

using scripted::Host;

KernelHandle LoadKernel(const std::shared_ptr<Device>& device, std::string_view module,
                        std::string_view kernel) {
  const bool normal =
      Host::Instance()
          .Enter("IL::LoadKernel", scripted::Arguments(scripted::NameOfDevice(device),
                                                       std::string(module), std::string(kernel)))
          .IsNormal();
  return normal ? Host::Instance().results.loadKernel(device, kernel) : nullptr;
}

}  // namespace IL
