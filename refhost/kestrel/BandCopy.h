#pragma once

namespace RefHost {

/// Rows of a band: even, and few enough for what is made on the way to stay in a cache.
inline constexpr int kBandRows = 32;

/// A copy between two frames whose rows can be made in bands.
class BandCopy {
 public:
  virtual ~BandCopy() = default;
  /// Makes the destination's rows from `first` up to `last`, at most `kBandRows` of them. `first`
  /// is a multiple of `kBandRows`. Any number of bands may be made at the same time.
  virtual void CopyRows(int first, int last) const = 0;
};

}  // namespace RefHost
