#pragma once

#include <optional>

#include "host/orvmediatypes/ColorSpace.h"

namespace RefHost {

/// Nominal peak of an HLG display that nothing more is known of (ITU-R BT.2100-2, table 5).
inline constexpr int kNominalHlgNits = 1000;

/// Peak luminance that the metadata gives, whole nits: the peak of the content or of the display
/// it is made for, else the mastering display's.
std::optional<int> MetadataPeakNits(const orvmediatypes::color::ColorSpace& colorSpace);

/// The same, else the peak that the transfer function stands for: 10000 for PQ, 1000 for HLG, -1
/// for all others, whose signals have no luminance of their own.
int PeakNits(const orvmediatypes::color::ColorSpace& colorSpace);

}  // namespace RefHost
