#pragma once

#include <cstdint>
#include <memory>

#include "host/orvcore/Allocator.h"
#include "host/pavix/IVideoFrame.h"

namespace IL {
class Device;
}

namespace KS {

/// Makes a frame in system memory, contents undefined, and puts it into `frame`. The engine
/// passes false for both flags. 0, or a negative code and `frame` as it was.
int CreateVideoFrame(PX::VideoFrameRef& frame, orvmediatypes::PixelFormat format, int width,
                     int height, orvmediatypes::PixelAspectRatio aspect,
                     const orvmediatypes::color::ColorSpace& colorSpace, bool clear, bool shared);

/// Makes a frame in the memory of `device`. The engine passes 0 for the three reserved values, no
/// memory, no parent and false. 0, or a negative code and `frame` as it was.
int CreateGPUVideoFrame(PX::VideoFrameRef& frame, const std::shared_ptr<IL::Device>& device,
                        orvmediatypes::PixelFormat format, int width, int height,
                        orvmediatypes::PixelAspectRatio aspect, orvmediatypes::FieldType fieldType,
                        orvcore::geom::PointT<int> origin,
                        const orvmediatypes::color::ColorSpace& colorSpace, std::uint64_t reserved1,
                        std::uint64_t reserved2, std::uint64_t reserved3,
                        const std::shared_ptr<const orvcore::allocator::RecycledMemory>& memory,
                        const PX::VideoFrameRef& parent, bool shared);

}  // namespace KS
