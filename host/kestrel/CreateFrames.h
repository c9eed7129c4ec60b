#pragma once

#include <cstdint>
#include <memory>

#include "host/orvcore/Allocator.h"
#include "host/pavix/IVideoFrame.h"

namespace IL {
class Device;
}

// Working frames. The engine makes at most one a call, passes an empty handle for it, owns the one
// reference that it gets, and releases it before its call returns. Called on the thread of its
// caller. 0 or above, or a negative code, which the engine hands on, and `frame` as it was.

namespace KS {

/// Makes a frame in system memory, contents undefined, and puts it into `frame`. Its bounds are of
/// this size, wherever they lie; its rows lie without gaps: row bytes are 16 times the width. It
/// has `IVideoFrameMemoryAccess`. The engine passes
///
///   format          linear float BGRA
///   width, height   the source's, in pixels; the host refuses what it cannot make, 0 among it
///   aspect          the source's
///   colorSpace      the linear equivalent of the source's
///   clear, shared   false
int CreateVideoFrame(PX::VideoFrameRef& frame, orvmediatypes::PixelFormat format, int width,
                     int height, orvmediatypes::PixelAspectRatio aspect,
                     const orvmediatypes::color::ColorSpace& colorSpace, bool clear, bool shared);

/// Makes a frame in the memory of `device`, contents undefined, and puts it into `frame`. Rows may
/// have gaps of whole pixels. A host without GPUs returns a negative code. The engine passes
///
///   device, format, width, height,    the source's
///   aspect, fieldType, origin
///   colorSpace                        the linear equivalent of the source's
///   reserved1, reserved2, reserved3   0; what they mean is the host's own
///   memory                            null: none to be used again
///   parent                            empty
///   shared                            false
int CreateGPUVideoFrame(PX::VideoFrameRef& frame, const std::shared_ptr<IL::Device>& device,
                        orvmediatypes::PixelFormat format, int width, int height,
                        orvmediatypes::PixelAspectRatio aspect, orvmediatypes::FieldType fieldType,
                        orvcore::geom::PointT<int> origin,
                        const orvmediatypes::color::ColorSpace& colorSpace, std::uint64_t reserved1,
                        std::uint64_t reserved2, std::uint64_t reserved3,
                        const std::shared_ptr<const orvcore::allocator::RecycledMemory>& memory,
                        const PX::VideoFrameRef& parent, bool shared);

}  // namespace KS
