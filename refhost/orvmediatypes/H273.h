#pragma once

#include <cstdint>
#include <optional>

#include "host/orvmediatypes/ColorSpace.h"

/// Code points of ITU-T H.273 by name, and what they stand for.
namespace RefHost {

inline constexpr std::uint8_t kUnspecifiedCodePoint = 2;

// Table 2, colour primaries.
inline constexpr std::uint8_t kPrimariesBT709 = 1;
inline constexpr std::uint8_t kPrimariesBT470M = 4;
inline constexpr std::uint8_t kPrimariesBT470BG = 5;
inline constexpr std::uint8_t kPrimariesSMPTE170M = 6;
inline constexpr std::uint8_t kPrimariesSMPTE240M = 7;
inline constexpr std::uint8_t kPrimariesFilm = 8;
inline constexpr std::uint8_t kPrimariesBT2020 = 9;
inline constexpr std::uint8_t kPrimariesXYZ = 10;
inline constexpr std::uint8_t kPrimariesDCIP3 = 11;
inline constexpr std::uint8_t kPrimariesP3D65 = 12;
inline constexpr std::uint8_t kPrimariesEBU3213 = 22;

// Table 3, transfer characteristics.
inline constexpr std::uint8_t kTransferBT709 = 1;
inline constexpr std::uint8_t kTransferGamma22 = 4;
inline constexpr std::uint8_t kTransferGamma28 = 5;
inline constexpr std::uint8_t kTransferSMPTE170M = 6;
inline constexpr std::uint8_t kTransferSMPTE240M = 7;
inline constexpr std::uint8_t kTransferLinear = 8;
inline constexpr std::uint8_t kTransferXvYCC = 11;
inline constexpr std::uint8_t kTransferSRGB = 13;
inline constexpr std::uint8_t kTransferBT2020 = 14;
inline constexpr std::uint8_t kTransferBT2020TwelveBit = 15;
inline constexpr std::uint8_t kTransferPQ = 16;
inline constexpr std::uint8_t kTransferST428 = 17;
inline constexpr std::uint8_t kTransferHLG = 18;

// Table 4, matrix coefficients.
inline constexpr std::uint8_t kMatrixIdentity = 0;

/// Primaries and white point: those of the code point or, where it is `kUnspecifiedCodePoint`, the
/// coordinates that the colour space gives. Nothing for other code points, and for coordinates
/// that span no colour space.
std::optional<orvmediatypes::color::Chromaticities> ChromaticitiesOf(
    const orvmediatypes::color::ColorSpace& colorSpace);

}  // namespace RefHost
