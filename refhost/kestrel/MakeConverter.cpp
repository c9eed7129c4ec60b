#include "refhost/kestrel/MakeConverter.h"

#include "refhost/ResultCodes.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace RefHost {

namespace {

bool MeanTheSame(const ColorDescription& one, const ColorDescription& other) {
  return one.primaries == other.primaries && one.transfer == other.transfer &&
         one.chromaticities == other.chromaticities && one.peakLuminance == other.peakLuminance;
}

}  // namespace

int MakeConverter(const ColorSpace& from, const ColorSpace& to,
                  const ColorManagementSettings& settings,
                  std::shared_ptr<const PixelConverter>& converter) {
  converter = nullptr;
  if (MeanTheSame(from.Description(), to.Description())) return 0;
  converter = MakePixelConverter(from, to, settings);
  if (converter == nullptr) return kNotSupported;
  if (converter->IsIdentity()) converter = nullptr;
  return 0;
}

}  // namespace RefHost
