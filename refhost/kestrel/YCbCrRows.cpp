#include "refhost/kestrel/YCbCrRows.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace RefHost {

namespace {

/// Where the samples of one component lie in a frame.
struct Component {
  int plane = 0;
  /// In samples: the first one in its row, and from one to the next.
  int offset = 0;
  int step = 1;
  /// How far stored codes stand above the low bits.
  int shift = 0;
  int width = 0;
  int height = 0;
};

Component ComponentOf(const FrameView& frame, int index) {
  Component component;
  component.plane = index;
  if (frame.info.layout == FrameLayout::SemiPlanarYCbCr) {
    component.plane = std::min(index, 1);
    component.offset = index == 2 ? 1 : 0;
    component.step = index == 0 ? 1 : 2;
    component.shift = 8 * frame.info.bytesPerSample - frame.info.bits;
  }
  const Plane& plane = frame.planes[static_cast<std::size_t>(component.plane)];
  component.width = plane.width;
  component.height = plane.height;
  return component;
}

bool IsPacked(const Component& component) { return component.step == 1 && component.shift == 0; }

template <class Sample>
void UnpackRow(const std::byte* row, const Component& component, int bits, int bufferWidth,
               Sample* codes) {
  const auto largest = static_cast<Sample>((1U << static_cast<unsigned>(bits)) - 1U);
  if (IsPacked(component)) {
    std::memcpy(codes, row, static_cast<std::size_t>(component.width) * sizeof(Sample));
    for (int x = 0; x < component.width; ++x) codes[x] = std::min(codes[x], largest);
  } else {
    for (int x = 0; x < component.width; ++x) {
      Sample sample;
      const std::ptrdiff_t at = std::ptrdiff_t{x} * component.step + component.offset;
      std::memcpy(&sample, row + at * std::ptrdiff_t{sizeof(Sample)}, sizeof(Sample));
      codes[x] = std::min(static_cast<Sample>(sample >> component.shift), largest);
    }
  }
  std::fill(codes + component.width, codes + bufferWidth, codes[component.width - 1]);
}

template <class Sample>
void PackRow(const Sample* codes, const Component& component, std::byte* row) {
  if (IsPacked(component)) {
    std::memcpy(row, codes, static_cast<std::size_t>(component.width) * sizeof(Sample));
    return;
  }
  for (int x = 0; x < component.width; ++x) {
    const auto sample = static_cast<Sample>(codes[x] << component.shift);
    const std::ptrdiff_t at = std::ptrdiff_t{x} * component.step + component.offset;
    std::memcpy(row + at * std::ptrdiff_t{sizeof(Sample)}, &sample, sizeof(Sample));
  }
}

}  // namespace

void UnpackRows(const FrameView& frame, const std::array<int, 3>& zimgPlanes, int first,
                const PlanarBuffer& buffer) {
  for (int i = 0; i < 3; ++i) {
    const Component component = ComponentOf(frame, i);
    const int plane = zimgPlanes[static_cast<std::size_t>(i)];
    const int firstRow = i == 0 ? first : first >> frame.info.ChromaShiftY();
    for (int y = 0; y < buffer.Height(plane); ++y) {
      const std::byte* row =
          frame.Row(component.plane, std::min(firstRow + y, component.height - 1));
      if (frame.info.bytesPerSample == 1) {
        UnpackRow(row, component, frame.info.bits, buffer.Width(plane),
                  buffer.Row<std::uint8_t>(plane, y));
      } else {
        UnpackRow(row, component, frame.info.bits, buffer.Width(plane),
                  buffer.Row<std::uint16_t>(plane, y));
      }
    }
  }
}

void PackRows(const PlanarBuffer& buffer, const std::array<int, 3>& zimgPlanes, int bufferFirst,
              int first, int last, const FrameView& frame) {
  for (int i = 0; i < 3; ++i) {
    const Component component = ComponentOf(frame, i);
    const int plane = zimgPlanes[static_cast<std::size_t>(i)];
    const int shift = i == 0 ? 0 : frame.info.ChromaShiftY();
    for (int y = first >> shift; y < (last + shift) >> shift; ++y) {
      std::byte* row = frame.Row(component.plane, y);
      const int bufferRow = y - (bufferFirst >> shift);
      if (frame.info.bytesPerSample == 1) {
        PackRow(buffer.Row<std::uint8_t>(plane, bufferRow), component, row);
      } else {
        PackRow(buffer.Row<std::uint16_t>(plane, bufferRow), component, row);
      }
    }
  }
}

}  // namespace RefHost
