#pragma once

#include "host/pavix/IVideoFrame.h"

namespace Quillon::Cli {

/// Whether pictures in these colours hold linear light, which has no scale of its own.
bool IsSceneLinear(const orvmediatypes::color::ColorDescription& colors);

/// The light of a scene-linear picture in system memory, multiplied: the same frame where it is
/// float BGRA, else a new one in linear R, G and B of the same primaries. Throws CommandError.
PX::VideoFrameRef ScaleLight(const PX::VideoFrameRef& frame, double factor, int white);

/// Tells a picture its colours. Linear light whose file says that its 1.0 is `fileWhiteNits` (0: it
/// does not say) becomes such that its 1.0 is `white` nits; only float BGRA comes with that. Once a
/// picture.
void TagPicture(const PX::VideoFrameRef& frame,
                const orvmediatypes::color::ColorDescription& colors, float fileWhiteNits,
                int white);

/// Log-average luminance (BT.2020's) of a scene-linear picture in nits. Pixels without light, or
/// with a component that is not finite, are left out; those below 0.0001 nits count as 0.0001. 0
/// where no pixel is left. Throws CommandError.
double LogAverageNits(const PX::VideoFrameRef& frame, int white);

/// What an automatic exposure brings the log-average luminance to.
inline constexpr double kGreyOfWhite = 0.18;

/// Stops that bring the log-average luminance to that grey, -8 to 8; 0 where there is no light.
double AutomaticStops(double logAverageNits, int white);

}  // namespace Quillon::Cli
