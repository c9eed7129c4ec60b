#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "host/pavix/GamutMappingUtils.h"

namespace scripted {

using orvmediatypes::color::ColorDescription;

/// A colour space told apart by H.273 code points, with a metadata peak in nits or none.
constexpr ColorDescription Colors(std::uint8_t primaries, std::uint8_t transfer,
                                  std::int32_t peakNits = 0) {
  ColorDescription colors;
  colors.primaries = primaries;
  colors.transfer = transfer;
  colors.peakLuminance = peakNits;
  return colors;
}

inline constexpr ColorDescription kPQ = Colors(9, 16);
inline constexpr ColorDescription kHLG = Colors(9, 18);
inline constexpr ColorDescription kSDR = Colors(1, 1);
inline constexpr ColorDescription kLinear709 = Colors(1, 8);

/// A record in which every field has a value of its own: HLG to SDR, graphics white at 100 nits
/// (a default-constructed one is at 203), version 3.
PX::GamutMappingUtils::GamutMappingSettings MakeRecord(int toneMapAlgorithm,
                                                       int gamutAlgorithm = 0);

/// Watches a record: names it "record" in the log and, at the end of its life, fails the test if
/// a field or a byte of it has changed.
class RecordWatch {
 public:
  explicit RecordWatch(const PX::GamutMappingUtils::GamutMappingSettings& record);
  RecordWatch(const RecordWatch&) = delete;
  RecordWatch& operator=(const RecordWatch&) = delete;
  ~RecordWatch();

 private:
  using Settings = PX::GamutMappingUtils::GamutMappingSettings;
  using Bytes = std::array<std::byte, sizeof(Settings)>;
  static Bytes BytesOf(const Settings& record);

  const Settings& record_;
  Settings copy_;
  Bytes bytes_;
};

}  // namespace scripted
