#include "tonemap/PQTables.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>

#include "base/DefaultFloatingPoint.h"
#include "curves/St2084.h"
#include "curves/Three.h"
#include "tonemap/PQTransfer.h"

namespace Quillon {

namespace {

constexpr float kMostNits = 10000.0F;
constexpr float kDecodeStep = 1.0F / 8191.0F;

template <std::size_t Size>
using Table = std::array<float, Size>;

/// Entry i is the function's value at i steps.
template <std::size_t Size>
Table<Size> BuildTable(const CHR::TransferFunction& function, float step) {
  const DefaultFloatingPoint mode;
  Table<Size> table;
  for (std::size_t i = 0; i < Size; ++i) {
    const float at = static_cast<float>(i) * step;
    std::array<float, 3> pixel = {at, at, at};
    function(pixel.data(), 1.0F);
    table[i] = pixel[0];
  }
  return table;
}

const Table<10000>& EncodeTable() {
  static const Table<10000> kTable = BuildTable<10000>(kPQLinearToSignal, 1.0F);
  return kTable;
}

const Table<8191>& DecodeTable() {
  // Deliberate: its function is obtained anew.
  static const Table<8191> kTable = BuildTable<8191>(ObtainPQSignalToLinear(), kDecodeStep);
  return kTable;
}

/// Clamped before the conversion to an index.
std::size_t IndexOf(float place, std::size_t size) {
  if (!(place >= 1.0F)) return 0;
  return static_cast<std::size_t>(std::min(place, static_cast<float>(size - 1)));
}

bool EncodesAsSt2084(float nits, float encoded) {
  const auto expected = static_cast<float>(EncodeSt2084(nits));
  return std::bit_cast<int>(encoded) == std::bit_cast<int>(expected);
}

/// Light that nobody asked to have encoded: a host that refuses it encodes otherwise, and fails no
/// call.
bool EncodesAsSt2084Beyond(float nits) try {
  std::array<float, 3> pixel = {nits, -nits, nits * 0.75F};
  std::array<float, 3> encoded = pixel;
  kPQLinearToSignal(encoded.data(), 1.0F);
  return std::equal(pixel.begin(), pixel.end(), encoded.begin(), EncodesAsSt2084);
} catch (...) {
  return false;
}

bool AskWhetherHostEncodesAsSt2084() {
  const DefaultFloatingPoint mode;
  for (std::size_t i = 0; i < EncodeTable().size(); ++i) {
    if (!EncodesAsSt2084(static_cast<float>(i), EncodeTable()[i])) return false;
  }
  float nits = 1e-30F;
  for (int i = 0; i < 989; ++i) {
    if (!EncodesAsSt2084Beyond(nits)) return false;
    nits *= 1.15F;
  }
  return true;
}

bool IsWithin(const float* pixel, float most) {
  return !(LargestOfThree(pixel[0], pixel[1], pixel[2]) > most) &&
         !(SmallestOfThree(pixel[0], pixel[1], pixel[2]) < 0.0F);
}

}  // namespace

std::span<const float> PQEncodeTable() { return EncodeTable(); }
std::span<const float> PQDecodeTable() { return DecodeTable(); }

std::size_t PQDecodeIndex(float signal) {
  return IndexOf(signal / kDecodeStep, DecodeTable().size());
}

void EncodePQByTable(float* pixel) {
  if (!IsWithin(pixel, kMostNits)) return kPQLinearToSignal(pixel, 1.0F);
  for (int i = 0; i < 3; ++i) pixel[i] = EncodeTable()[IndexOf(pixel[i], EncodeTable().size())];
}

void DecodePQByTable(float* pixel) {
  if (!IsWithin(pixel, 1.0F)) return kPQSignalToLinear(pixel, 1.0F);
  for (int i = 0; i < 3; ++i) pixel[i] = DecodeTable()[PQDecodeIndex(pixel[i])];
}

bool HostEncodesAsSt2084() {
  static const bool kEncodesSo = AskWhetherHostEncodesAsSt2084();
  return kEncodesSo;
}

bool WarmPQTables() {
  if (!kPQSignalToLinear || !kPQLinearToSignal) return false;
  std::array<float, 3> scratch = {1.0F, 1.0F, 1.0F};
  EncodePQByTable(scratch.data());
  scratch = {1.0F, 1.0F, 1.0F};
  DecodePQByTable(scratch.data());
  return true;
}

}  // namespace Quillon
