// Frames in system memory, in the one format that the engine works on.

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "host/chromant/Conversion.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"
#include "host/kestrel/FrameManipulators.h"

namespace KS {

namespace {

using orvmediatypes::PixelFormat;
using orvmediatypes::color::ColorSpace;

constexpr int kNotHere = -2;

class Frame final : public orvcore::classref::IObject,
                    public PX::IVideoFrame,
                    public IVideoFrameMemoryAccess {
 public:
  Frame(int width, int height, orvmediatypes::PixelAspectRatio aspect, ColorSpace colorSpace)
      : bounds_{0, 0, width, height},
        aspect_(aspect),
        colorSpace_(std::move(colorSpace)),
        pixels_(std::size_t{4} * width * height) {}

  void* QueryInterface(std::string_view name) override {
    if (name == "PX::IVideoFrame") return static_cast<PX::IVideoFrame*>(this);
    if (name == "KS::IVideoFrameMemoryAccess") return static_cast<IVideoFrameMemoryAccess*>(this);
    return nullptr;
  }

  orvcore::geom::Bounds GetBounds() const override { return bounds_; }
  orvmediatypes::PixelAspectRatio GetPixelAspectRatio() const override { return aspect_; }
  PixelFormat GetPixelFormat() const override { return orvmediatypes::kLinearFloatBGRA; }
  ColorSpace GetColorSpace() const override { return colorSpace_; }
  void SetColorSpace(const ColorSpace& colorSpace) override { colorSpace_ = colorSpace; }
  orvmediatypes::FieldType GetFieldType() const override { return {}; }
  orvcore::geom::PointT<int> GetOrigin() const override { return {}; }

  void* GetData() const override { return const_cast<float*>(pixels_.data()); }
  std::int32_t GetRowBytes() const override { return 16 * bounds_.width; }

 private:
  orvcore::geom::Bounds bounds_;
  orvmediatypes::PixelAspectRatio aspect_;
  ColorSpace colorSpace_;
  std::vector<float> pixels_;
};

/// A frame and its counts.
struct Block final : orvcore::classref::ControlBlock {
  void DisposeObject() noexcept override { frame.reset(); }
  void DestroyBlock() noexcept override { const std::unique_ptr<Block> self(this); }
  std::optional<Frame> frame;
};

}  // namespace

int CreateVideoFrame(PX::VideoFrameRef& frame, PixelFormat format, int width, int height,
                     orvmediatypes::PixelAspectRatio aspect, const ColorSpace& colorSpace,
                     bool /*clear*/, bool /*shared*/) {
  if (format != orvmediatypes::kLinearFloatBGRA || width <= 0 || height <= 0) return kNotHere;
  auto block = std::make_unique<Block>();
  Frame* object = &block->frame.emplace(width, height, aspect, colorSpace);
  frame = PX::VideoFrameRef(object, object, block.release());
  return 0;
}

int CreateGPUVideoFrame(PX::VideoFrameRef&, const std::shared_ptr<IL::Device>&, PixelFormat, int,
                        int, orvmediatypes::PixelAspectRatio, orvmediatypes::FieldType,
                        orvcore::geom::PointT<int>, const ColorSpace&, std::uint64_t, std::uint64_t,
                        std::uint64_t,
                        const std::shared_ptr<const orvcore::allocator::RecycledMemory>&,
                        const PX::VideoFrameRef&, bool) {
  return kNotHere;
}

}  // namespace KS

int KS::VideoFrameManipulators::CopyFrame(
    const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
    orvmediatypes::RenderQuality /*quality*/,
    const orvmediatypes::color::ColorManagementSettings& settings) {
  using orvcore::classref::InterfaceCast;
  const auto source = InterfaceCast<IVideoFrameMemoryAccess>(from);
  const auto destination = InterfaceCast<IVideoFrameMemoryAccess>(to);
  const orvcore::geom::Bounds bounds = from->GetBounds();
  return CHR::ConvertFrame(source->GetData(), destination->GetData(), bounds.width, bounds.height,
                           from->GetColorSpace(), from->GetPixelFormat(), source->GetRowBytes(),
                           to->GetColorSpace(), to->GetPixelFormat(), destination->GetRowBytes(),
                           settings);
}

int KS::GPUFrameManipulators::CopyFrame(const PX::VideoFrameRef&, const PX::VideoFrameRef&,
                                        orvmediatypes::RenderQuality,
                                        const orvmediatypes::color::ColorManagementSettings&) {
  return kNotHere;
}
