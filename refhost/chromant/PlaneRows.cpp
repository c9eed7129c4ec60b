#include "refhost/chromant/PlaneRows.h"

#include "refhost/chromant/rows/ConvertRows.h"

namespace RefHost {

void SplitPixels(const float* pixels, std::size_t count, float* red, float* green, float* blue) {
  RowFunctionsOf(BestInstructionSet()).split(pixels, count, red, green, blue);
}

void JoinPixels(const float* red, const float* green, const float* blue, std::size_t count,
                float* pixels) {
  RowFunctionsOf(BestInstructionSet()).join(red, green, blue, count, pixels);
}

void BoundSamples(float* samples, std::size_t count, float most) {
  RowFunctionsOf(BestInstructionSet()).bound(samples, count, most);
}

}  // namespace RefHost
