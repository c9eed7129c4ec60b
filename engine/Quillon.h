#pragma once

#include "host/pavix/GamutMappingUtils.h"
#include "host/pavix/IVideoFrame.h"

#ifdef _WIN32
#define QUILLON_EXPORT __declspec(dllexport)
#else
#define QUILLON_EXPORT __attribute__((visibility("default")))
#endif

namespace Quillon {

/// Maps the source frame into the destination frame as the settings ask: gamut compression, then
/// tone mapping, then conversion into the destination's colour space. Where they ask for nothing,
/// the source is copied, or left alone when both handles refer to one frame.
///
/// Both frames live on a GPU, or both live in system memory and have equal bounds. The source may
/// be the destination. A GPU source in a linear colour space is worked on in place. The settings
/// are never written. Synchronous; calls on different frames may run at the same time on any
/// threads. Exceptions of the host pass through.
///
/// Returns 0, or a negative code:
///   0xA00F000E  a handle is empty, or the working frame's bounds or pixels are not as they must be
///   0xA00F000C  the frames live in different places, or in system memory and differ in bounds; an
///               algorithm value is not implemented; or GPU kernels cannot work on the pixel format
///   0xA00F0001  a GPU kernel could not be loaded
///   0xA00F000F  the parameters computed for the curve are degenerate or incomplete
///   any other   what a host call returned
///
/// Deliberate: the destination's handle may be written; it refers to the same frame afterwards.
///
/// After a failure the destination may hold partly processed pixels. Failures of the steps past the
/// first checks are reported through the host's trace: level 7, category "Quillon".
QUILLON_EXPORT int ApplyGamutMapping(const orvcore::classref::InterfaceRef<PX::IVideoFrame>& source,
                                     const PX::GamutMappingUtils::GamutMappingSettings& settings,
                                     orvcore::classref::InterfaceRef<PX::IVideoFrame>& destination);

}  // namespace Quillon
