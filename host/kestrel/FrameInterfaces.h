#pragma once

#include <cstdint>
#include <memory>

namespace IL {
class Device;
}

// How the pixels of a frame are reached. A frame has some of these beside `PX::IVideoFrame`, and
// gives them out by their qualified names ("KS::IGPUVideoFrame") through the interface query. A
// frame in system memory has `IVideoFrameMemoryAccess`; one on a GPU has `IGPUVideoFrame`,
// `IGPUVideoFrameMemoryAccess` and `IVideoFrame2DPixelMemoryAccess`. Where one of these is missing,
// the engine raises the null-handle exception when it comes to need it. What the operations answer
// stays the same while the frame lives. They are called on the thread of the engine's caller.

namespace KS {

/// Present on a frame exactly when its pixels live on a GPU: this alone chooses the engine's path.
struct IGPUVideoFrame {
  /// The device, shared; the engine holds it until its call returns. Null raises the null-handle
  /// exception. Kernels of gamut compression run on the destination's, those of tone maps on the
  /// working frame's, which is the source's: a host makes both the same, or refuses the copy.
  virtual std::shared_ptr<IL::Device> GetDevice() const = 0;

 protected:
  ~IGPUVideoFrame() = default;
};

/// Pixels in system memory. The order of the operations is fixed.
struct IVideoFrameMemoryAccess {
  /// First pixel of the first row; valid, and at the same place, while the frame lives, on any
  /// thread. The frame's own. Null is refused with 0xA00F000E.
  virtual void* GetData() const = 0;
  /// Bytes from the start of a row to that of the next, not below 0. In the format linear float
  /// BGRA they must be 16 times the width where the frame has more than one row: the engine places
  /// bands by them and walks the rows of a band without a gap.
  virtual std::int32_t GetRowBytes() const = 0;

 protected:
  ~IVideoFrameMemoryAccess() = default;
};

/// Pixels in rows of equal pitch. Optional on a frame in system memory, where its row bytes count
/// before those of `IVideoFrameMemoryAccess`. The order of the operations is fixed.
struct IVideoFrame2DPixelMemoryAccess {
  /// Rows. Never asked; its place counts.
  virtual std::int32_t GetRowCount() const = 0;
  /// Bytes from the start of a row to that of the next, in the memory that the frame has.
  virtual std::int32_t GetRowBytes() const = 0;

 protected:
  ~IVideoFrame2DPixelMemoryAccess() = default;
};

/// Pixels in the memory of a device: four interleaved components, half or 32-bit floats for the
/// kernels that come with the reference host.
struct IGPUVideoFrameMemoryAccess {
  /// First pixel, as kernels get it in `Quillon::GPUFrameDescriptor`: an address or a handle, as
  /// the device counts. The engine never reads there. Valid while the frame lives, and while work
  /// on it is not done.
  virtual std::uint64_t GetDevicePointer() const = 0;

 protected:
  ~IGPUVideoFrameMemoryAccess() = default;
};

/// Tells when work on a GPU frame is done. Optional.
///
/// Deliberate: the engine queries it before kernels run, and never waits. Order is the device's;
/// who reads pixels after a call waits himself.
struct ICompletionEventVideoFrame {
  /// Returns when all work on the frame is done. For the host's own use.
  virtual void WaitForCompletion() = 0;

 protected:
  ~ICompletionEventVideoFrame() = default;
};

}  // namespace KS
