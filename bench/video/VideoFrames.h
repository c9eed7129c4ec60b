#pragma once

#include "host/pavix/IVideoFrame.h"

/// What both sides start from, a 4K HDR10 frame: 10-bit YCbCr 4:2:0 of BT.2100 PQ, limited range.
/// Light varies smoothly up to 1000 nits, with grain in the luma.
PX::VideoFrameRef MakeHdr10Frame();

/// What both end with, contents undefined: 8-bit YCbCr 4:2:0 of BT.709, limited range.
PX::VideoFrameRef MakeSdrFrame();

/// BT.2020 primaries in linear light, 1.0 = 203 nits.
orvmediatypes::color::ColorSpace WorkingColorSpace();

inline constexpr int kSourceNits = 1000;
inline constexpr int kWhiteNits = 203;
