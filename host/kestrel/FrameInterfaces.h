#pragma once

#include <cstdint>
#include <memory>

namespace IL {
class Device;
}

namespace KS {

/// Present on a frame exactly when its pixels live on a GPU.
struct IGPUVideoFrame {
  virtual std::shared_ptr<IL::Device> GetDevice() const = 0;

 protected:
  ~IGPUVideoFrame() = default;
};

/// Pixels in system memory.
struct IVideoFrameMemoryAccess {
  /// First pixel of the first row.
  virtual void* GetData() const = 0;
  virtual std::int32_t GetRowBytes() const = 0;

 protected:
  ~IVideoFrameMemoryAccess() = default;
};

/// Pixels in rows of equal pitch.
struct IVideoFrame2DPixelMemoryAccess {
  virtual std::int32_t GetRowCount() const = 0;
  virtual std::int32_t GetRowBytes() const = 0;

 protected:
  ~IVideoFrame2DPixelMemoryAccess() = default;
};

/// Pixels in the memory of a device.
struct IGPUVideoFrameMemoryAccess {
  virtual std::uint64_t GetDevicePointer() const = 0;

 protected:
  ~IGPUVideoFrameMemoryAccess() = default;
};

/// Tells when work on a GPU frame is done.
struct ICompletionEventVideoFrame {
  virtual void WaitForCompletion() = 0;

 protected:
  ~ICompletionEventVideoFrame() = default;
};

}  // namespace KS
