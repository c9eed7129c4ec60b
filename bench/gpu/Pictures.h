#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/pavix/IVideoFrame.h"
#include "refhost/ironlane/GPUDevice.h"

using DeviceRef = std::shared_ptr<RefHost::GPUDevice>;

/// A size and a format of frames.
struct Shape {
  int width = 0;
  int height = 0;
  orvmediatypes::PixelFormat format;

  /// "3840x2160 half"
  std::string Name() const;
};

/// A frame on the device, contents undefined.
PX::VideoFrameRef MakeOnDevice(const DeviceRef& device, const Shape& shape,
                               const orvmediatypes::color::ColorSpace& colorSpace);

/// One with light from below 0 to 5, out of gamut and above the knee in part.
PX::VideoFrameRef MakePicture(const DeviceRef& device, const Shape& shape,
                              const orvmediatypes::color::ColorSpace& colorSpace);

/// The bytes of a frame on a device, with what lies between rows.
std::vector<char> BytesOf(const PX::VideoFrameRef& frame);
