#include "bench/video/VideoFrames.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "bench/CurveCases.h"
#include "bench/Frames.h"
#include "host/kestrel/FrameManipulators.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"
#include "refhost/orvmediatypes/H273.h"

namespace {

void AddGrain(const PX::VideoFrameRef& frame) {
  const auto planes = orvcore::classref::InterfaceCast<RefHost::IVideoFramePlaneAccess>(frame);
  const RefHost::Plane luma = planes->GetPlane(0);
  std::minstd_rand random(5);
  for (int y = 0; y < luma.height; ++y) {
    auto* row = reinterpret_cast<std::uint16_t*>(static_cast<std::byte*>(luma.data) +
                                                 static_cast<std::ptrdiff_t>(y) * luma.rowBytes);
    for (int x = 0; x < luma.width; ++x) {
      const int grain = static_cast<int>(random() >> 8U) % 7 - 3;
      row[x] = static_cast<std::uint16_t>(std::clamp(row[x] + grain, 64, 940));
    }
  }
}

}  // namespace

orvmediatypes::color::ColorSpace WorkingColorSpace() {
  return Bt2020(RefHost::kTransferLinear, kSourceNits);
}

PX::VideoFrameRef MakeHdr10Frame() {
  const std::vector<float> picture = MakePicture(Picture::Hdr);
  const PX::VideoFrameRef light = Make4kFrame(orvmediatypes::kLinearFloatBGRA, WorkingColorSpace());
  const float kPeak = static_cast<float>(kSourceNits) / kWhiteNits;
  std::transform(picture.begin(), picture.end(), FloatsOf(light).begin(),
                 [kPeak](float value) { return std::min(value, kPeak); });

  PX::VideoFrameRef frame = Make4kFrame(RefHost::PlanarYCbCr(RefHost::ChromaFormat::C420, 10),
                                        Bt2020(RefHost::kTransferPQ, kSourceNits));
  constexpr orvmediatypes::RenderQuality kQuality = 4;
  Check(KS::VideoFrameManipulators::CopyFrame(light, frame, kQuality, {}), "CopyFrame");
  AddGrain(frame);
  return frame;
}

PX::VideoFrameRef MakeSdrFrame() {
  return Make4kFrame(RefHost::PlanarYCbCr(RefHost::ChromaFormat::C420, 8),
                     Bt709(RefHost::kTransferBT709, 0));
}
