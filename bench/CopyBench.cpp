// A 4K PQ frame, 10-bit YCbCr 4:2:0, into a new linear float frame: the first call, whose memory
// comes fresh from the system, and a second one, which finds that of the frame before.

#include <cstddef>
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/Frames.h"
#include "bench/Timing.h"
#include "host/kestrel/FrameManipulators.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"
#include "refhost/orvcore/RecyclerStatistics.h"
#include "refhost/orvmediatypes/H273.h"

namespace {

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

constexpr int kPeakNits = 1000;

/// Fills each plane with a repeating ramp over legal 10-bit codes.
void FillWithCodes(const PX::VideoFrameRef& frame) {
  const auto planes = orvcore::classref::InterfaceCast<RefHost::IVideoFramePlaneAccess>(frame);
  for (int index = 0; index < planes->GetPlaneCount(); ++index) {
    const RefHost::Plane plane = planes->GetPlane(index);
    for (int y = 0; y < plane.height; ++y) {
      auto* row = reinterpret_cast<std::uint16_t*>(static_cast<std::byte*>(plane.data) +
                                                   static_cast<std::ptrdiff_t>(y) * plane.rowBytes);
      for (int x = 0; x < plane.width; ++x) {
        row[x] = static_cast<std::uint16_t>(64 + (x + y) % 877);
      }
    }
  }
}

void CopyToLinear(benchmark::State& state, bool memoryIsKept) {
  const ColorSpace linear = Bt2020(RefHost::kTransferLinear, kPeakNits);
  const ColorManagementSettings settings;
  const PX::VideoFrameRef source =
      Make4kFrame(RefHost::PlanarYCbCr(RefHost::ChromaFormat::C420, 10),
                  Bt2020(RefHost::kTransferPQ, kPeakNits));
  FillWithCodes(source);
  constexpr orvmediatypes::RenderQuality kQuality = 4;
  const auto call = [&] {
    const PX::VideoFrameRef frame = Make4kFrame(orvmediatypes::kLinearFloatBGRA, linear);
    Check(KS::VideoFrameManipulators::CopyFrame(source, frame, kQuality, settings), "CopyFrame");
  };

  if (memoryIsKept) call();
  std::vector<double> calls;
  while (state.KeepRunning()) {
    if (!memoryIsKept) RefHost::ReleaseKeptBlocks();
    calls.push_back(SecondsOf(call));
    state.SetIterationTime(calls.back());
  }
  state.counters["ns/pixel"] = Median(calls) * 1e9 / kPixels;
}

BENCHMARK_CAPTURE(CopyToLinear, first, false)
    ->Name("copy/pq-ycbcr420-10bit-to-linear-float/first-call")
    ->Iterations(15)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CopyToLinear, second, true)
    ->Name("copy/pq-ycbcr420-10bit-to-linear-float/second-call")
    ->Iterations(15)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
