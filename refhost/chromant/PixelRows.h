#pragma once

#include <cstddef>
#include <optional>

#include "host/orvmediatypes/PixelFormat.h"

namespace RefHost {

/// Whether the format has four interleaved components, as RGB pixels with alpha have here.
bool IsInterleavedFourComponent(orvmediatypes::PixelFormat format);

/// How components of interleaved blue, green, red and alpha are stored.
enum class ComponentType { UInt8, UInt16, Half, Float };

/// The component type of a format, nothing for formats that are not interleaved BGRA.
std::optional<ComponentType> ComponentTypeOf(orvmediatypes::PixelFormat format);

/// Size of one pixel.
std::size_t PixelBytes(ComponentType type);

/// Stored pixels to floats: integers from 0 to 1, floats as they are. Any alignment.
void LoadPixels(ComponentType type, const std::byte* stored, std::size_t pixels, float* floats);

/// Floats to stored pixels. Integers are clamped and rounded to nearest, NaN becomes 0.
void StorePixels(ComponentType type, const float* floats, std::size_t pixels, std::byte* stored);

}  // namespace RefHost
