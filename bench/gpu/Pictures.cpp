#include "bench/gpu/Pictures.h"

#include "bench/Frames.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"
#include "refhost/kestrel/FrameView.h"
#include "refhost/kestrel/GPUFrame.h"
#include "refhost/kestrel/PixelFormats.h"

std::string Shape::Name() const {
  return std::to_string(width) + "x" + std::to_string(height) +
         (format == RefHost::kBgraFloat ? " float" : " half");
}

PX::VideoFrameRef MakeOnDevice(const DeviceRef& device, const Shape& shape,
                               const orvmediatypes::color::ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  Check(KS::CreateGPUVideoFrame(frame, device, shape.format, shape.width, shape.height, {}, {}, {},
                                colorSpace, 0, 0, 0, nullptr, {}, false),
        "making a frame on the device");
  return frame;
}

PX::VideoFrameRef MakePicture(const DeviceRef& device, const Shape& shape,
                              const orvmediatypes::color::ColorSpace& colorSpace) {
  PX::VideoFrameRef picture;
  Check(KS::CreateVideoFrame(picture, RefHost::kBgraFloat, shape.width, shape.height, {},
                             colorSpace, false, false),
        "making a frame");
  RefHost::FrameView view;
  Check(RefHost::ViewFrame(picture, view), "viewing a frame");
  for (int row = 0; row < view.height; ++row) {
    auto* pixel = reinterpret_cast<float*>(view.Row(0, row));
    for (int column = 0; column < view.width; ++column, pixel += 4) {
      const float across = 5.0F * static_cast<float>(column) / static_cast<float>(view.width);
      const float down = static_cast<float>(row) / static_cast<float>(view.height);
      pixel[0] = across * (1.0F - 1.3F * down);
      pixel[1] = across;
      pixel[2] = across * (1.2F * down - 0.2F);
      pixel[3] = 1.0F;
    }
  }
  PX::VideoFrameRef frame = MakeOnDevice(device, shape, colorSpace);
  Check(KS::GPUFrameManipulators::CopyFrame(picture, frame, 4, {}), "an upload");
  return frame;
}

std::vector<char> BytesOf(const PX::VideoFrameRef& frame) {
  RefHost::GPUFrameView view;
  Check(RefHost::ViewGPUFrame(frame, view), "viewing a frame");
  std::vector<char> bytes(view.Bytes());
  Check(view.device->Download(view.pixels, bytes.data(), bytes.size()), "a download");
  return bytes;
}
