#pragma once

#include "host/orvcore/Geom.h"
#include "host/orvcore/InterfaceRef.h"
#include "host/orvmediatypes/ColorSpace.h"
#include "host/orvmediatypes/FrameProperties.h"
#include "host/orvmediatypes/PixelFormat.h"

namespace PX {

/// One video frame, wherever its pixels live; those are reached by the interfaces of
/// host/kestrel/FrameInterfaces.h. The engine calls a frame on the thread of its own caller, and
/// keeps no reference when its call is over. While it works on a frame, nobody else changes it. The
/// order of the operations is fixed.
///
/// Not asked of a frame: whether it is shared, when it is shown, where its pixels come from. A host
/// may have more operations behind these.
struct IVideoFrame {
  /// Place and size. Frames in system memory are refused unless all four values agree; else the
  /// engine uses width and height alone.
  virtual orvcore::geom::Bounds GetBounds() const = 0;
  /// Handed on to the working frame.
  virtual orvmediatypes::PixelAspectRatio GetPixelAspectRatio() const = 0;
  /// The same for as long as the frame lives. May be asked more than once for one purpose.
  virtual orvmediatypes::PixelFormat GetPixelFormat() const = 0;
  /// The tag that says what the pixels mean: a copy.
  virtual orvmediatypes::color::ColorSpace GetColorSpace() const = 0;
  /// Replaces the tag; pixels stay as they are. The engine sets the destination's own tag again, on
  /// a frame in system memory that it worked on in place, whether or not its conversion succeeded.
  virtual void SetColorSpace(const orvmediatypes::color::ColorSpace& colorSpace) = 0;
  /// Asked of a frame on a GPU, and handed on to the working frame, as is the origin: the place
  /// that its bounds begin with.
  virtual orvmediatypes::FieldType GetFieldType() const = 0;
  virtual orvcore::geom::PointT<int> GetOrigin() const = 0;

 protected:
  ~IVideoFrame() = default;
};

/// A shared frame. The engine gives back the references that it made itself, and no others.
using VideoFrameRef = orvcore::classref::InterfaceRef<IVideoFrame>;

}  // namespace PX
