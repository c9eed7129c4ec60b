#include "mapper/FitFrame.h"

#include "base/DefaultFloatingPoint.h"
#include "host/kestrel/FrameInterfaces.h"
#include "mapper/EngineMessages.h"
#include "refhost/kestrel/GPUFrame.h"
#include "refhost/kestrel/PixelKernel.h"
#include "refhost/orvcore/Bands.h"

namespace Quillon::Mapper {

namespace {

constexpr int kBandRows = 16;

/// A table in the memory of a device, which kernels take as a frame of one row.
class TableOnDevice {
 public:
  TableOnDevice(std::shared_ptr<RefHost::GPUDevice> device, const std::vector<float>& table)
      : bytes_(table.size() * sizeof(float)) {
    std::uint64_t pointer = 0;
    if (device->Allocate(bytes_, pointer) < 0) return;
    view_ = {.device = std::move(device),
             .pixels = pointer,
             .width = 1,
             .height = 1,
             .rowBytes = static_cast<std::uint32_t>(bytes_),
             .pixelBytes = static_cast<std::uint32_t>(bytes_)};
    isThere_ = view_.device->Upload(table.data(), pointer, bytes_) >= 0;
  }
  TableOnDevice(const TableOnDevice&) = delete;
  TableOnDevice& operator=(const TableOnDevice&) = delete;
  ~TableOnDevice() {
    if (view_.device != nullptr) view_.device->Free(view_.pixels);
  }

  bool IsThere() const { return isThere_; }
  const RefHost::GPUFrameView& View() const { return view_; }

 private:
  std::size_t bytes_;
  RefHost::GPUFrameView view_;
  bool isThere_ = false;
};

}  // namespace

void FitFrame(const GamutFit& fit, const PX::VideoFrameRef& frame) {
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(frame);
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  auto* const pixels = static_cast<std::byte*>(memory->GetData());
  const std::ptrdiff_t rowBytes = memory->GetRowBytes();
  RefHost::RunInBands(bounds.height, kBandRows, [&](int first, int last) {
    const DefaultFloatingPoint mode;
    for (std::ptrdiff_t row = first; row < last; ++row) {
      FitPixels(BestInstructionSet(), fit, reinterpret_cast<float*>(pixels + row * rowBytes),
                static_cast<std::size_t>(bounds.width));
    }
  });
}

Failure FitOnDevice(const GamutFit& fit, const PX::VideoFrameRef& frame) {
  const EngineMessages messages;
  RefHost::GPUFrameView pixels;
  if (RefHost::ViewGPUFrame(frame, pixels) >= 0) {
    const TableOnDevice table(pixels.device, fit.table);
    const RefHost::KernelValue params = {&fit.params, sizeof(fit.params), alignof(GamutFitParams)};
    if (table.IsThere() &&
        RefHost::RunPixelKernel("GamutFit", "FitPixels", {pixels, table.View()}, {params}) >= 0) {
      return std::nullopt;
    }
  }
  return Error{Code::DeviceFailed, "the device failed", messages.Joined()};
}

}  // namespace Quillon::Mapper
