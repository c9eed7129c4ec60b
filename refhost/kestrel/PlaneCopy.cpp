#include "refhost/kestrel/PlaneCopy.h"

#include <cstring>

namespace RefHost {

void PlaneCopy::CopyRows(int first, int last) const {
  for (int plane = 0; plane < source_.info.planeCount; ++plane) {
    const int shift = plane == 0 ? 0 : source_.info.ChromaShiftY();
    const std::size_t size = source_.RowSize(plane);
    // A band's last row is odd or the picture's last: its chroma row is this band's.
    for (int row = first >> shift; row < (last + shift) >> shift; ++row) {
      std::memcpy(destination_.Row(plane, row), source_.Row(plane, row), size);
    }
  }
}

}  // namespace RefHost
