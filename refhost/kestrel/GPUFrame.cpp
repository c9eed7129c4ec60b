#include "refhost/kestrel/GPUFrame.h"

#include <limits>
#include <optional>
#include <utility>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"
#include "refhost/ResultCodes.h"
#include "refhost/ironlane/DeviceMemory.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"
#include "refhost/orvcore/SharedObject.h"

namespace RefHost {

namespace {

/// Rows begin where devices read fastest.
constexpr std::int64_t kRowAlignment = 256;

/// What a frame on a GPU is made of.
struct GPUFrameLayout {
  orvcore::geom::Bounds bounds;
  orvmediatypes::PixelAspectRatio aspect;
  orvmediatypes::PixelFormat format;
  orvmediatypes::FieldType fieldType;
  orvmediatypes::color::ColorSpace colorSpace;
  std::int32_t rowBytes = 0;
};

class GPUFrame final : public orvcore::classref::IObject,
                       public PX::IVideoFrame,
                       public KS::IGPUVideoFrame,
                       public KS::IGPUVideoFrameMemoryAccess,
                       public KS::IVideoFrame2DPixelMemoryAccess,
                       public KS::ICompletionEventVideoFrame {
 public:
  GPUFrame(GPUFrameLayout layout, std::unique_ptr<DeviceMemory> memory)
      : layout_(std::move(layout)), memory_(std::move(memory)) {}

  void* QueryInterface(std::string_view qualifiedName) noexcept override {
    using orvcore::utility::QualifiedName;
    if (qualifiedName == QualifiedName<PX::IVideoFrame>()) {
      return static_cast<PX::IVideoFrame*>(this);
    }
    if (qualifiedName == QualifiedName<KS::IGPUVideoFrame>()) {
      return static_cast<KS::IGPUVideoFrame*>(this);
    }
    if (qualifiedName == QualifiedName<KS::IGPUVideoFrameMemoryAccess>()) {
      return static_cast<KS::IGPUVideoFrameMemoryAccess*>(this);
    }
    if (qualifiedName == QualifiedName<KS::IVideoFrame2DPixelMemoryAccess>()) {
      return static_cast<KS::IVideoFrame2DPixelMemoryAccess*>(this);
    }
    if (qualifiedName == QualifiedName<KS::ICompletionEventVideoFrame>()) {
      return static_cast<KS::ICompletionEventVideoFrame*>(this);
    }
    return nullptr;
  }

  orvcore::geom::Bounds GetBounds() const override { return layout_.bounds; }
  orvmediatypes::PixelAspectRatio GetPixelAspectRatio() const override { return layout_.aspect; }
  orvmediatypes::PixelFormat GetPixelFormat() const override { return layout_.format; }
  orvmediatypes::color::ColorSpace GetColorSpace() const override { return layout_.colorSpace; }
  void SetColorSpace(const orvmediatypes::color::ColorSpace& colorSpace) override {
    layout_.colorSpace = colorSpace;
  }
  orvmediatypes::FieldType GetFieldType() const override { return layout_.fieldType; }
  orvcore::geom::PointT<int> GetOrigin() const override {
    return {layout_.bounds.left, layout_.bounds.top};
  }

  std::shared_ptr<IL::Device> GetDevice() const override { return memory_->Device(); }
  std::uint64_t GetDevicePointer() const override { return memory_->Pointer(); }
  std::int32_t GetRowCount() const override { return layout_.bounds.height; }
  std::int32_t GetRowBytes() const override { return layout_.rowBytes; }
  void WaitForCompletion() override { memory_->Device()->Finish(); }

 private:
  GPUFrameLayout layout_;
  std::unique_ptr<DeviceMemory> memory_;
};

/// Bytes of a pixel that kernels can work on; nothing for other formats.
std::optional<std::int32_t> PixelBytesOnGPU(orvmediatypes::PixelFormat format) {
  if (format == kBgraFloat) return 16;
  if (format == kBgraHalf) return 8;
  return std::nullopt;
}

/// Puts a frame with memory of its own into `frame`; the layout's row bytes are found here.
int CreateGPUFrame(PX::VideoFrameRef& frame, const std::shared_ptr<IL::Device>& device,
                   GPUFrameLayout layout) {
  const auto gpu = std::dynamic_pointer_cast<GPUDevice>(device);
  const auto pixelBytes = PixelBytesOnGPU(layout.format);
  if (gpu == nullptr || !pixelBytes.has_value()) return kNotSupported;
  const auto [left, top, width, height] = layout.bounds;
  if (width <= 0 || height <= 0) return kInvalidFrame;
  const std::int64_t packed = std::int64_t{width} * *pixelBytes;
  const std::int64_t rowBytes = (packed + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
  if (rowBytes > std::numeric_limits<std::int32_t>::max()) return kInvalidFrame;
  if (rowBytes > kLargestFrameBytes / height) return kInvalidFrame;
  layout.rowBytes = static_cast<std::int32_t>(rowBytes);

  std::unique_ptr<DeviceMemory> memory;
  const auto bytes = static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(height);
  if (const int result = DeviceMemory::Allocate(gpu, bytes, memory); result < 0) return result;
  frame = MakeShared<PX::IVideoFrame, GPUFrame>(std::move(layout), std::move(memory));
  return 0;
}

}  // namespace

int ViewGPUFrame(const PX::VideoFrameRef& frame, GPUFrameView& view) {
  using orvcore::classref::InterfaceCast;
  if (!frame.IsUsable()) return kInvalidFrame;
  const auto onGPU = InterfaceCast<KS::IGPUVideoFrame>(frame);
  const auto memory = InterfaceCast<KS::IGPUVideoFrameMemoryAccess>(frame);
  const auto rows = InterfaceCast<KS::IVideoFrame2DPixelMemoryAccess>(frame);
  if (!onGPU.IsUsable() || !memory.IsUsable() || !rows.IsUsable()) return kNotSupported;
  const auto pixelBytes = PixelBytesOnGPU(frame->GetPixelFormat());
  auto device = std::dynamic_pointer_cast<GPUDevice>(onGPU->GetDevice());
  if (device == nullptr || !pixelBytes.has_value()) return kNotSupported;
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  view = {.device = std::move(device),
          .pixels = memory->GetDevicePointer(),
          .width = static_cast<std::uint32_t>(bounds.width),
          .height = static_cast<std::uint32_t>(bounds.height),
          .rowBytes = static_cast<std::uint32_t>(rows->GetRowBytes()),
          .pixelBytes = static_cast<std::uint32_t>(*pixelBytes)};
  return 0;
}

bool IsOnGPU(const PX::VideoFrameRef& frame) {
  return orvcore::classref::InterfaceCast<KS::IGPUVideoFrame>(frame).IsUsable();
}

}  // namespace RefHost

namespace KS {

int CreateGPUVideoFrame(PX::VideoFrameRef& frame, const std::shared_ptr<IL::Device>& device,
                        orvmediatypes::PixelFormat format, int width, int height,
                        orvmediatypes::PixelAspectRatio aspect, orvmediatypes::FieldType fieldType,
                        orvcore::geom::PointT<int> origin,
                        const orvmediatypes::color::ColorSpace& colorSpace,
                        std::uint64_t /*reserved1*/, std::uint64_t /*reserved2*/,
                        std::uint64_t /*reserved3*/,
                        const std::shared_ptr<const orvcore::allocator::RecycledMemory>& /*memory*/,
                        const PX::VideoFrameRef& /*parent*/, bool /*shared*/) {
  return RefHost::CreateGPUFrame(frame, device,
                                 {.bounds = {origin.x, origin.y, width, height},
                                  .aspect = aspect,
                                  .format = format,
                                  .fieldType = fieldType,
                                  .colorSpace = colorSpace});
}

}  // namespace KS
