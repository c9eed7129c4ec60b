#include "refhost/chromant/PixelRows.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "curves/HalfFloat.h"

namespace RefHost {

namespace {

constexpr std::size_t kComponents = 4;

/// Bits 1 to 3 of a format's descriptor.
constexpr std::uint32_t kDepthMask = 0x0EU;
constexpr std::uint32_t DepthCode(std::uint32_t descriptor) {
  return (descriptor & kDepthMask) >> 1U;
}

template <class Integer>
float FromInteger(Integer value) {
  return static_cast<float>(value) / static_cast<float>(std::numeric_limits<Integer>::max());
}

template <class Integer>
Integer ToInteger(float value) {
  constexpr double kLargest = std::numeric_limits<Integer>::max();
  if (!(value > 0.0F)) return 0;
  if (value >= 1.0F) return std::numeric_limits<Integer>::max();
  return static_cast<Integer>(std::lround(static_cast<double>(value) * kLargest));
}

template <class Component, class Function>
void Load(const std::byte* stored, std::size_t pixels, float* floats, Function toFloat) {
  for (std::size_t i = 0; i < pixels * kComponents; ++i) {
    Component component;
    std::memcpy(&component, stored + i * sizeof(Component), sizeof(Component));
    floats[i] = toFloat(component);
  }
}

template <class Component, class Function>
void Store(const float* floats, std::size_t pixels, std::byte* stored, Function fromFloat) {
  for (std::size_t i = 0; i < pixels * kComponents; ++i) {
    const Component component = fromFloat(floats[i]);
    std::memcpy(stored + i * sizeof(Component), &component, sizeof(Component));
  }
}

}  // namespace

bool IsInterleavedFourComponent(orvmediatypes::PixelFormat format) {
  return ((format.descriptor >> 19U) & 3U) == 1U;
}

std::optional<ComponentType> ComponentTypeOf(orvmediatypes::PixelFormat format) {
  const auto& known = orvmediatypes::kLinearFloatBGRA;
  if (format.fourCC != known.fourCC) return std::nullopt;
  if ((format.descriptor & ~kDepthMask) != (known.descriptor & ~kDepthMask)) return std::nullopt;
  switch (DepthCode(format.descriptor)) {
    case 0:
      return ComponentType::UInt8;
    case 2:
      return ComponentType::UInt16;
    case 3:
      return ComponentType::Half;
    case 5:
      return ComponentType::Float;
    default:
      return std::nullopt;
  }
}

std::size_t PixelBytes(ComponentType type) {
  switch (type) {
    case ComponentType::UInt8:
      return kComponents;
    case ComponentType::UInt16:
    case ComponentType::Half:
      return kComponents * 2;
    case ComponentType::Float:
      break;
  }
  return kComponents * sizeof(float);
}

void LoadPixels(ComponentType type, const std::byte* stored, std::size_t pixels, float* floats) {
  switch (type) {
    case ComponentType::UInt8:
      return Load<std::uint8_t>(stored, pixels, floats, FromInteger<std::uint8_t>);
    case ComponentType::UInt16:
      return Load<std::uint16_t>(stored, pixels, floats, FromInteger<std::uint16_t>);
    case ComponentType::Half:
      return Load<std::uint16_t>(stored, pixels, floats, FromHalf);
    case ComponentType::Float:
      std::memcpy(floats, stored, pixels * PixelBytes(type));
      return;
  }
}

void StorePixels(ComponentType type, const float* floats, std::size_t pixels, std::byte* stored) {
  switch (type) {
    case ComponentType::UInt8:
      return Store<std::uint8_t>(floats, pixels, stored, ToInteger<std::uint8_t>);
    case ComponentType::UInt16:
      return Store<std::uint16_t>(floats, pixels, stored, ToInteger<std::uint16_t>);
    case ComponentType::Half:
      return Store<std::uint16_t>(floats, pixels, stored, [](float value) {
        return static_cast<std::uint16_t>(ToHalf(value));
      });
    case ComponentType::Float:
      std::memcpy(stored, floats, pixels * PixelBytes(type));
      return;
  }
}

}  // namespace RefHost
