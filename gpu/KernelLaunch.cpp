#include "gpu/KernelLaunch.h"

#include "gpu/PixelLayout.h"

namespace Quillon {

namespace {

constexpr std::int32_t kPlatform3 = 3;
constexpr std::int32_t kPlatform4 = 4;

LaunchGeometry ChooseBlock(const IL::DeviceDescription& device) {
  constexpr LaunchGeometry kSingle{.blockX = 1, .blockY = 1};
  constexpr LaunchGeometry kRow{.blockX = 64, .blockY = 1};
  constexpr LaunchGeometry kSquare{.blockX = 16, .blockY = 16};
  if (device.platformKind == IL::kPlatformOpenCl) return kSingle;
  if (device.platformKind == kPlatform3) return kSquare;
  switch (device.architectureCode) {
    case 1:
      return kRow;
    case 3:
    case 5:
    case 6:
      return kSquare;
    default:
      return kSingle;
  }
}

std::uint32_t DivideRoundingUp(std::uint32_t size, std::uint32_t block) {
  return size / block + (size % block != 0 ? 1 : 0);
}

bool TakesBuffersAsMemory(std::int32_t platformKind) {
  return platformKind == IL::kPlatformOpenCl || platformKind == kPlatform3 ||
         platformKind == kPlatform4;
}

/// Pushes arguments until one fails.
class ArgumentPusher {
 public:
  explicit ArgumentPusher(IL::IArgumentSet& arguments) : arguments_(arguments) {}

  void Frame(const GPUFrameDescriptor& frame) {
    if (status_ >= 0) status_ = arguments_.SetFrameArgument(&frame);
  }
  void Memory(std::uint64_t buffer) {
    if (status_ >= 0) status_ = arguments_.SetMemoryArgument(buffer, 0);
  }
  template <class Value>
  void Push(const Value& value) {
    if (status_ >= 0) status_ = arguments_.SetValueArgument(&value, sizeof(Value), sizeof(Value));
  }
  /// The last status, after `Finalize` if nothing failed before.
  int Finish() { return status_ < 0 ? status_ : arguments_.Finalize(); }

 private:
  IL::IArgumentSet& arguments_;
  int status_ = 0;
};

int PushArguments(IL::IArgumentSet& set, std::int32_t platformKind,
                  const KernelArguments& arguments) {
  ArgumentPusher pusher(set);
  pusher.Frame(arguments.frame);
  // Deliberate: a buffer that is always null, and then numbers that the frame has.
  if (TakesBuffersAsMemory(platformKind)) {
    pusher.Memory(arguments.auxiliaryBuffer);
  } else {
    pusher.Push(arguments.auxiliaryBuffer);
  }
  pusher.Push(arguments.rowPitchPixels);
  pusher.Push(FormatFlag(arguments.pixelFormat));
  pusher.Push(arguments.frameSize);
  for (std::uint32_t index = 0; index < arguments.floatCount; ++index) {
    pusher.Push(arguments.floats[index]);
  }
  return pusher.Finish();
}

}  // namespace

LaunchGeometry ChooseLaunchGeometry(const IL::DeviceDescription& device, std::uint32_t width,
                                    std::uint32_t height) {
  LaunchGeometry geometry = ChooseBlock(device);
  geometry.gridX = DivideRoundingUp(width, geometry.blockX);
  geometry.gridY = DivideRoundingUp(height, geometry.blockY);
  return geometry;
}

int LaunchKernel(IL::Device& device, std::int32_t platformKind, IL::KernelHandle kernel,
                 const LaunchGeometry& geometry, const KernelArguments& arguments) {
  orvcore::classref::InterfaceRef<IL::IArgumentSet> set;
  int status = device.CreateArguments(kernel, arguments.ByValueBytes(), set);
  if (status < 0) return status;
  status = PushArguments(*set, platformKind, arguments);
  if (status < 0) return status;
  return device.Launch(kernel, set, geometry.gridX, geometry.gridY, geometry.blockX,
                       geometry.blockY, 0);
}

}  // namespace Quillon
