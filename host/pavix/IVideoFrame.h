#pragma once

#include "host/orvcore/Geom.h"
#include "host/orvcore/InterfaceRef.h"
#include "host/orvmediatypes/ColorSpace.h"
#include "host/orvmediatypes/FrameProperties.h"
#include "host/orvmediatypes/PixelFormat.h"

namespace PX {

/// One video frame, wherever its pixels live. The order of the operations is fixed.
struct IVideoFrame {
  virtual orvcore::geom::Bounds GetBounds() const = 0;
  virtual orvmediatypes::PixelAspectRatio GetPixelAspectRatio() const = 0;
  virtual orvmediatypes::PixelFormat GetPixelFormat() const = 0;
  virtual orvmediatypes::color::ColorSpace GetColorSpace() const = 0;
  virtual void SetColorSpace(const orvmediatypes::color::ColorSpace& colorSpace) = 0;
  virtual orvmediatypes::FieldType GetFieldType() const = 0;
  virtual orvcore::geom::PointT<int> GetOrigin() const = 0;

 protected:
  ~IVideoFrame() = default;
};

using VideoFrameRef = orvcore::classref::InterfaceRef<IVideoFrame>;

}  // namespace PX
