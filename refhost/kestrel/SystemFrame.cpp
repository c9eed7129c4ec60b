#include "refhost/kestrel/SystemFrame.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "host/kestrel/FrameInterfaces.h"
#include "refhost/ResultCodes.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/orvcore/RecycledMemory.h"
#include "refhost/orvcore/SharedObject.h"

namespace RefHost {

namespace {

constexpr std::int64_t kRowAlignment = 64;

std::int64_t RoundUp(std::int64_t value, std::int64_t step) {
  return (value + step - 1) / step * step;
}

using Planes = std::array<Plane, kMaxPlanes>;

/// The planes without their memory, or nothing when some row does not hold its samples.
std::optional<Planes> LayOut(const FormatInfo& info, const SystemFrameLayout& layout) {
  Planes planes;
  for (int i = 0; i < info.planeCount; ++i) {
    const auto index = static_cast<std::size_t>(i);
    const int shiftX = i == 0 ? 0 : info.ChromaShiftX();
    const int shiftY = i == 0 ? 0 : info.ChromaShiftY();
    Plane& plane = planes[index];
    plane.width = (layout.width + shiftX) >> shiftX;
    plane.height = (layout.height + shiftY) >> shiftY;
    const std::int64_t needed =
        std::int64_t{plane.width} * info.SamplesPerPosition(i) * info.bytesPerSample;
    std::int64_t rowBytes = layout.rowBytes[index];
    if (rowBytes == 0) rowBytes = info.IsYCbCr() ? RoundUp(needed, kRowAlignment) : needed;
    if (rowBytes < needed || rowBytes > std::numeric_limits<std::int32_t>::max()) {
      return std::nullopt;
    }
    plane.rowBytes = static_cast<std::int32_t>(rowBytes);
  }
  return planes;
}

/// Where each plane begins in one block, and the size of the block.
struct BlockLayout {
  std::array<std::size_t, kMaxPlanes> offsets{};
  std::size_t bytes = 0;
};

/// Nothing when the frame is too large.
std::optional<BlockLayout> LayOutBlock(const Planes& planes) {
  BlockLayout block;
  std::int64_t bytes = 0;
  for (std::size_t i = 0; i < planes.size(); ++i) {
    const std::int64_t planeBytes = std::int64_t{planes[i].rowBytes} * planes[i].height;
    if (planeBytes > kLargestFrameBytes - bytes) return std::nullopt;
    block.offsets[i] = static_cast<std::size_t>(bytes);
    bytes = RoundUp(bytes + planeBytes, kRowAlignment);
  }
  block.bytes = static_cast<std::size_t>(bytes);
  return block;
}

class SystemFrame final : public orvcore::classref::IObject,
                          public PX::IVideoFrame,
                          public KS::IVideoFrameMemoryAccess,
                          public KS::IVideoFrame2DPixelMemoryAccess,
                          public IVideoFramePlaneAccess {
 public:
  SystemFrame(const SystemFrameLayout& layout, const FormatInfo& info, const Planes& planes,
              std::unique_ptr<orvcore::allocator::RecycledMemory> memory)
      : bounds_{layout.left, layout.top, layout.width, layout.height},
        aspect_(layout.aspect),
        format_(layout.format),
        colorSpace_(layout.colorSpace),
        fieldType_(layout.fieldType),
        planeCount_(info.planeCount),
        planes_(planes),
        memory_(std::move(memory)) {
    if (layout.borrowed.has_value()) release_ = layout.borrowed->release;
  }
  SystemFrame(const SystemFrame&) = delete;
  SystemFrame& operator=(const SystemFrame&) = delete;
  ~SystemFrame() {
    if (release_) release_();
  }

  void* QueryInterface(std::string_view qualifiedName) noexcept override {
    using orvcore::utility::QualifiedName;
    if (qualifiedName == QualifiedName<PX::IVideoFrame>()) {
      return static_cast<PX::IVideoFrame*>(this);
    }
    if (qualifiedName == QualifiedName<KS::IVideoFrameMemoryAccess>()) {
      return static_cast<KS::IVideoFrameMemoryAccess*>(this);
    }
    if (qualifiedName == QualifiedName<KS::IVideoFrame2DPixelMemoryAccess>()) {
      return static_cast<KS::IVideoFrame2DPixelMemoryAccess*>(this);
    }
    if (qualifiedName == QualifiedName<IVideoFramePlaneAccess>()) {
      return static_cast<IVideoFramePlaneAccess*>(this);
    }
    return nullptr;
  }

  orvcore::geom::Bounds GetBounds() const override { return bounds_; }
  orvmediatypes::PixelAspectRatio GetPixelAspectRatio() const override { return aspect_; }
  orvmediatypes::PixelFormat GetPixelFormat() const override { return format_; }
  orvmediatypes::color::ColorSpace GetColorSpace() const override { return colorSpace_; }
  void SetColorSpace(const orvmediatypes::color::ColorSpace& colorSpace) override {
    colorSpace_ = colorSpace;
  }
  orvmediatypes::FieldType GetFieldType() const override { return fieldType_; }
  orvcore::geom::PointT<int> GetOrigin() const override { return {bounds_.left, bounds_.top}; }

  void* GetData() const override { return planes_[0].data; }
  std::int32_t GetRowBytes() const override { return planes_[0].rowBytes; }
  std::int32_t GetRowCount() const override { return planes_[0].height; }

  std::int32_t GetPlaneCount() const override { return planeCount_; }
  Plane GetPlane(std::int32_t index) const override {
    if (index < 0 || index >= planeCount_) return {};
    return planes_[static_cast<std::size_t>(index)];
  }

 private:
  orvcore::geom::Bounds bounds_;
  orvmediatypes::PixelAspectRatio aspect_;
  orvmediatypes::PixelFormat format_;
  orvmediatypes::color::ColorSpace colorSpace_;
  orvmediatypes::FieldType fieldType_;
  std::int32_t planeCount_;
  Planes planes_;
  std::unique_ptr<orvcore::allocator::RecycledMemory> memory_;
  std::function<void()> release_;
};

/// Puts the frame's own memory, or the borrowed one, into the planes. False when a borrowed plane
/// is null or the frame is too large.
bool AttachMemory(const SystemFrameLayout& layout, int planeCount, Planes& planes,
                  std::unique_ptr<orvcore::allocator::RecycledMemory>& memory) {
  const auto block = LayOutBlock(planes);
  if (!block.has_value()) return false;
  const auto count = static_cast<std::size_t>(planeCount);
  if (layout.borrowed.has_value()) {
    for (std::size_t i = 0; i < count; ++i) planes[i].data = layout.borrowed->planes[i];
  } else {
    memory = std::make_unique<orvcore::allocator::RecycledMemory>(block->bytes);
    for (std::size_t i = 0; i < count; ++i) planes[i].data = memory->Data() + block->offsets[i];
  }
  return std::all_of(planes.begin(), planes.begin() + planeCount,
                     [](const Plane& plane) { return plane.data != nullptr; });
}

}  // namespace

int CreateSystemFrame(PX::VideoFrameRef& frame, const SystemFrameLayout& layout) {
  const auto info = DescribeFormat(layout.format);
  if (!info.has_value()) return kNotSupported;
  const auto [narrow, wide] = std::minmax(layout.width, layout.height);
  if (narrow <= 0 || wide > kLargestSide) return kInvalidFrame;
  auto planes = LayOut(*info, layout);
  if (!planes.has_value()) return kInvalidFrame;
  try {
    std::unique_ptr<orvcore::allocator::RecycledMemory> memory;
    if (!AttachMemory(layout, info->planeCount, *planes, memory)) return kInvalidFrame;
    frame = MakeShared<PX::IVideoFrame, SystemFrame>(layout, *info, *planes, std::move(memory));
  } catch (const std::bad_alloc&) {
    return kInvalidFrame;
  }
  return 0;
}

}  // namespace RefHost
