#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/kestrel/FrameInterfaces.h"
#include "host/pavix/IVideoFrame.h"
#include "tests/host/Device.h"
#include "tests/host/Host.h"
#include "tests/host/Inventory.h"

namespace scripted {

/// What a scripted frame is made of.
struct FrameSetup {
  std::string name = "frame";
  orvcore::geom::Bounds bounds{0, 0, 2, 2};
  orvmediatypes::PixelFormat format = orvmediatypes::kLinearFloatBGRA;
  orvmediatypes::color::ColorDescription colors{};
  orvmediatypes::PixelAspectRatio aspect{};
  /// Row bytes of the memory-access view; 0: those of packed rows of 16-byte pixels.
  int rowBytes = 0;
  /// Row bytes of the two-dimensional view; 0: the same.
  int rowBytes2D = 0;
  bool hasMemory = true;
  bool has2D = true;
  bool onGPU = false;
  bool nullPixels = false;
  /// Of frames on a GPU.
  std::shared_ptr<Device> device{};
  std::uint64_t devicePointer = 0x1000;
  bool hasGPUMemory = true;
  bool hasCompletionEvent = false;
  orvmediatypes::FieldType fieldType = orvmediatypes::FieldType::Progressive;
};

/// A frame whose every operation is recorded under its name. Pixels start at 1.0.
class Frame : public orvcore::classref::IObject, public PX::IVideoFrame {
 public:
  explicit Frame(FrameSetup setup);
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;
  virtual ~Frame() = default;

  const FrameSetup& Setup() const { return setup_; }
  /// Whole memory: height times the row bytes, in floats.
  std::vector<float>& Pixels() { return pixels_; }

  void* QueryInterface(std::string_view qualifiedName) override;

  orvcore::geom::Bounds GetBounds() const override;
  orvmediatypes::PixelAspectRatio GetPixelAspectRatio() const override;
  orvmediatypes::PixelFormat GetPixelFormat() const override;
  orvmediatypes::color::ColorSpace GetColorSpace() const override;
  void SetColorSpace(const orvmediatypes::color::ColorSpace& colorSpace) override;
  orvmediatypes::FieldType GetFieldType() const override;
  orvcore::geom::PointT<int> GetOrigin() const override;

 private:
  struct View {
    Frame& frame;
  };
  struct MemoryView final : View, KS::IVideoFrameMemoryAccess {
    explicit MemoryView(Frame& owner) : View{owner} {}
    void* GetData() const override;
    std::int32_t GetRowBytes() const override;
  };
  struct PixelView final : View, KS::IVideoFrame2DPixelMemoryAccess {
    explicit PixelView(Frame& owner) : View{owner} {}
    std::int32_t GetRowCount() const override;
    std::int32_t GetRowBytes() const override;
  };
  struct GPUView final : View, KS::IGPUVideoFrame {
    explicit GPUView(Frame& owner) : View{owner} {}
    std::shared_ptr<IL::Device> GetDevice() const override;
  };
  struct GPUMemoryView final : View, KS::IGPUVideoFrameMemoryAccess {
    explicit GPUMemoryView(Frame& owner) : View{owner} {}
    std::uint64_t GetDevicePointer() const override;
  };
  struct CompletionView final : View, KS::ICompletionEventVideoFrame {
    explicit CompletionView(Frame& owner) : View{owner} {}
    void WaitForCompletion() override;
  };

  Outcome Enter(const std::string& operation, const std::string& arguments = {}) const;

  FrameSetup setup_;
  std::vector<float> pixels_;
  MemoryView memory_{*this};
  PixelView pixelView_{*this};
  GPUView gpu_{*this};
  GPUMemoryView gpuMemory_{*this};
  CompletionView completion_{*this};
  Live<Counted::Frame> live_;
};

/// A new frame, held by the handle alone. When its last reference goes, "<name>.DisposeObject" and
/// "<name>.DestroyBlock" are recorded.
PX::VideoFrameRef MakeFrame(FrameSetup setup);

/// The frame behind a handle that has one.
Frame& FrameOf(const PX::VideoFrameRef& handle);

/// Strong and weak references to the frame behind a handle.
int StrongCount(const PX::VideoFrameRef& handle);
int WeakCount(const PX::VideoFrameRef& handle);

/// Name of the live frame whose pixels begin at the pointer; empty when there is none.
std::string NameOfPixels(const void* pointer);

}  // namespace scripted
