#include "bench/Frames.h"

#include <stdexcept>
#include <string>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

ColorSpace SpaceOf(std::uint8_t primaries, std::uint8_t matrix, std::uint8_t transfer,
                   int peakNits) {
  ColorDescription description;
  description.primaries = primaries;
  description.transfer = transfer;
  description.matrix = matrix;
  description.fullRange = false;
  description.peakLuminance = peakNits;
  return ColorSpace(description);
}

}  // namespace

ColorSpace Bt2020(std::uint8_t transfer, int peakNits) {
  constexpr std::uint8_t kMatrixBT2020NonConstant = 9;
  return SpaceOf(RefHost::kPrimariesBT2020, kMatrixBT2020NonConstant, transfer, peakNits);
}

ColorSpace Bt709(std::uint8_t transfer, int peakNits) {
  constexpr std::uint8_t kMatrixBT709 = 1;
  return SpaceOf(RefHost::kPrimariesBT709, kMatrixBT709, transfer, peakNits);
}

PX::VideoFrameRef Make4kFrame(orvmediatypes::PixelFormat format, const ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  Check(KS::CreateVideoFrame(frame, format, kWidth, kHeight, {}, colorSpace, false, false),
        "CreateVideoFrame");
  return frame;
}

std::span<float> FloatsOf(const PX::VideoFrameRef& frame) {
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(frame);
  constexpr int kComponents = 4;
  if (memory->GetRowBytes() != kWidth * kComponents * static_cast<int>(sizeof(float))) {
    throw std::runtime_error("rows are not packed");
  }
  return {static_cast<float*>(memory->GetData()),
          static_cast<std::size_t>(kWidth) * kHeight * kComponents};
}

void Check(int result, const char* operation) {
  if (result < 0) throw std::runtime_error(std::string(operation) + " failed");
}
