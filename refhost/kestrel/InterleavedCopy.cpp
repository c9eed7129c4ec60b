#include "refhost/kestrel/InterleavedCopy.h"

#include <algorithm>
#include <array>
#include <utility>

namespace RefHost {

ComponentType ComponentTypeOf(const FormatInfo& info) {
  switch (info.sampleType) {
    case SampleType::Float:
      return ComponentType::Float;
    case SampleType::Half:
      return ComponentType::Half;
    case SampleType::UnsignedInteger:
      break;
  }
  return info.bits == 8 ? ComponentType::UInt8 : ComponentType::UInt16;
}

InterleavedCopy::InterleavedCopy(const FrameView& source, const FrameView& destination,
                                 std::shared_ptr<const PixelConverter> converter)
    : source_(source),
      destination_(destination),
      sourceType_(ComponentTypeOf(source.info)),
      destinationType_(ComponentTypeOf(destination.info)),
      converter_(std::move(converter)) {}

void InterleavedCopy::CopyRows(int first, int last) const {
  constexpr std::size_t kChunk = 256;
  std::array<float, 4 * kChunk> pixels{};
  const auto width = static_cast<std::size_t>(source_.width);
  for (int row = first; row < last; ++row) {
    const std::byte* from = source_.Row(0, row);
    std::byte* to = destination_.Row(0, row);
    for (std::size_t done = 0; done < width; done += kChunk) {
      const std::size_t count = std::min(kChunk, width - done);
      LoadPixels(sourceType_, from + done * PixelBytes(sourceType_), count, pixels.data());
      if (converter_ != nullptr) converter_->Convert(pixels.data(), pixels.data(), count);
      StorePixels(destinationType_, pixels.data(), count, to + done * PixelBytes(destinationType_));
    }
  }
}

}  // namespace RefHost
