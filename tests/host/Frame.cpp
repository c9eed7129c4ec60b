#include "tests/host/Frame.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>

#include "tests/host/Describe.h"

namespace scripted {

namespace {

/// Live frames, for naming pixel pointers and handles.
struct Registry {
  std::mutex mutex;
  std::vector<Frame*> frames;
};

Registry& LiveFrames() {
  static Registry registry;
  return registry;
}

struct FrameBlock final : orvcore::classref::ControlBlock {
  explicit FrameBlock(FrameSetup setup) : frame(std::make_unique<Frame>(std::move(setup))) {
    name = frame->Setup().name;
    const std::scoped_lock lock(LiveFrames().mutex);
    LiveFrames().frames.push_back(frame.get());
  }

  void DisposeObject() noexcept override {
    Host::Instance().Enter(name + ".DisposeObject", {});
    const std::scoped_lock lock(LiveFrames().mutex);
    std::erase(LiveFrames().frames, frame.get());
    frame.reset();
  }

  void DestroyBlock() noexcept override {
    Host::Instance().Enter(name + ".DestroyBlock", {});
    const std::unique_ptr<FrameBlock> self(this);
  }

  std::unique_ptr<Frame> frame;
  std::string name;
  Live<Counted::ControlBlock> live;
};

/// The control block of a handle, which keeps it to itself. The handle's layout is fixed: three
/// pointers, the control block last.
const FrameBlock& BlockOf(const PX::VideoFrameRef& handle) {
  struct Layout {
    void* interfacePointer;
    void* object;
    orvcore::classref::ControlBlock* control;
  };
  static_assert(sizeof(Layout) == sizeof(handle));
  Layout layout{};
  std::memcpy(&layout, &handle, sizeof(layout));
  return static_cast<const FrameBlock&>(*layout.control);
}

int PackedRowBytes(const FrameSetup& setup) { return std::max(setup.bounds.width, 0) * 16; }

}  // namespace

Frame::Frame(FrameSetup setup) : setup_(std::move(setup)) {
  if (setup_.rowBytes == 0) setup_.rowBytes = PackedRowBytes(setup_);
  if (setup_.rowBytes2D == 0) setup_.rowBytes2D = setup_.rowBytes;
  const int rowBytes = std::max(setup_.rowBytes, setup_.rowBytes2D);
  const auto rows = static_cast<std::size_t>(std::max(setup_.bounds.height, 0));
  pixels_.assign(rows * static_cast<std::size_t>(rowBytes) / sizeof(float), 1.0F);
}

Outcome Frame::Enter(const std::string& operation, const std::string& arguments) const {
  return Host::Instance().Enter(setup_.name + "." + operation, arguments);
}

void* Frame::QueryInterface(std::string_view qualifiedName) {
  if (!Enter("QueryInterface(" + std::string(qualifiedName) + ")").IsNormal()) return nullptr;
  if (qualifiedName == "KS::IVideoFrameMemoryAccess" && setup_.hasMemory) {
    return static_cast<KS::IVideoFrameMemoryAccess*>(&memory_);
  }
  if (qualifiedName == "KS::IVideoFrame2DPixelMemoryAccess" && setup_.has2D) {
    return static_cast<KS::IVideoFrame2DPixelMemoryAccess*>(&pixelView_);
  }
  if (qualifiedName == "KS::IGPUVideoFrame" && setup_.onGPU) {
    return static_cast<KS::IGPUVideoFrame*>(&gpu_);
  }
  if (qualifiedName == "KS::IGPUVideoFrameMemoryAccess" && setup_.onGPU && setup_.hasGPUMemory) {
    return static_cast<KS::IGPUVideoFrameMemoryAccess*>(&gpuMemory_);
  }
  if (qualifiedName == "KS::ICompletionEventVideoFrame" && setup_.hasCompletionEvent) {
    return static_cast<KS::ICompletionEventVideoFrame*>(&completion_);
  }
  return nullptr;
}

orvcore::geom::Bounds Frame::GetBounds() const {
  return Enter("GetBounds").IsNormal() ? setup_.bounds : orvcore::geom::Bounds{};
}

orvmediatypes::PixelAspectRatio Frame::GetPixelAspectRatio() const {
  return Enter("GetPixelAspectRatio").IsNormal() ? setup_.aspect
                                                 : orvmediatypes::PixelAspectRatio{};
}

orvmediatypes::PixelFormat Frame::GetPixelFormat() const {
  return Enter("GetPixelFormat").IsNormal() ? setup_.format : orvmediatypes::PixelFormat{};
}

orvmediatypes::color::ColorSpace Frame::GetColorSpace() const {
  return Enter("GetColorSpace").IsNormal() ? orvmediatypes::color::ColorSpace(setup_.colors)
                                           : orvmediatypes::color::ColorSpace();
}

void Frame::SetColorSpace(const orvmediatypes::color::ColorSpace& colorSpace) {
  if (!Enter("SetColorSpace", Describe(colorSpace)).IsNormal()) return;
  setup_.colors = colorSpace.Description();
}

orvmediatypes::FieldType Frame::GetFieldType() const {
  return Enter("GetFieldType").IsNormal() ? setup_.fieldType
                                          : orvmediatypes::FieldType::Progressive;
}

orvcore::geom::PointT<int> Frame::GetOrigin() const {
  if (!Enter("GetOrigin").IsNormal()) return {};
  return {setup_.bounds.left, setup_.bounds.top};
}

void* Frame::MemoryView::GetData() const {
  const bool present = frame.Enter("GetData").IsNormal() && !frame.setup_.nullPixels;
  return present ? frame.pixels_.data() : nullptr;
}

std::int32_t Frame::MemoryView::GetRowBytes() const {
  return frame.Enter("GetRowBytes").IsNormal() ? frame.setup_.rowBytes : 0;
}

std::int32_t Frame::PixelView::GetRowCount() const {
  return frame.Enter("GetRowCount").IsNormal() ? frame.setup_.bounds.height : 0;
}

std::int32_t Frame::PixelView::GetRowBytes() const {
  return frame.Enter("GetRowBytes2D").IsNormal() ? frame.setup_.rowBytes2D : 0;
}

std::shared_ptr<IL::Device> Frame::GPUView::GetDevice() const {
  return frame.Enter("GetDevice").IsNormal() ? frame.setup_.device : nullptr;
}

std::uint64_t Frame::GPUMemoryView::GetDevicePointer() const {
  return frame.Enter("GetDevicePointer").IsNormal() ? frame.setup_.devicePointer : 0;
}

void Frame::CompletionView::WaitForCompletion() { frame.Enter("WaitForCompletion"); }

PX::VideoFrameRef MakeFrame(FrameSetup setup) {
  auto block = std::make_unique<FrameBlock>(std::move(setup));
  Frame* frame = block->frame.get();
  return {frame, frame, block.release()};
}

Frame& FrameOf(const PX::VideoFrameRef& handle) { return static_cast<Frame&>(*handle.Object()); }

int StrongCount(const PX::VideoFrameRef& handle) { return BlockOf(handle).strong.load(); }

int WeakCount(const PX::VideoFrameRef& handle) { return BlockOf(handle).weak.load(); }

std::string NameOfPixels(const void* pointer) {
  const std::scoped_lock lock(LiveFrames().mutex);
  for (Frame* frame : LiveFrames().frames) {
    if (!frame->Pixels().empty() && frame->Pixels().data() == pointer) return frame->Setup().name;
  }
  return {};
}

}  // namespace scripted
