#include <array>
#include <memory>
#include <string>

#include "bench/quality/Contestants.h"
#include "bench/quality/FilterChain.h"

extern "C" {
#include <libavutil/hwcontext.h>
}

namespace Quality {

namespace {

/// The chain that people use, in float throughout: light with graphics white at 1, the gamut, the
/// curve, the display. `npl` puts 1 at 203 nits, as for all others. The filter reads a peak from
/// metadata in units of 100 nits, whatever `npl` is, and is told it in its own units instead.
std::string ToneMapFilters(const std::string& curve, double peakNits) {
  return "zscale=t=linear:npl=203,format=gbrpf32le,zscale=p=bt709,tonemap=" + curve +
         ":desat=0:peak=" + std::to_string(peakNits / kWhiteNits) +
         ",zscale=p=bt709:t=bt709:m=gbr:r=full,format=gbrpf32le";
}

/// The peak comes from the metadata; it is not measured.
std::string PlaceboFilters(const std::string& curve) {
  return "hwupload,libplacebo=tonemapping=" + curve +
         ":peak_detect=0:dithering=-1:colorspace=gbr:range=full:color_primaries=bt709:"
         "color_trc=bt709:format=gbrpf32le,hwdownload,format=gbrpf32le";
}

}  // namespace

std::vector<Contestant> FfmpegContestants() {
  std::vector<Contestant> contestants;
  for (const std::string curve : {"hable", "mobius", "reinhard"}) {
    contestants.push_back(
        {"ffmpeg " + curve, "", [curve](const std::vector<Signal>& pixels, double peakNits) {
           return MapByFilters(ToneMapFilters(curve, peakNits), pixels, peakNits, nullptr);
         }});
  }
  return contestants;
}

std::vector<Contestant> PlaceboContestants(std::string& remark) {
  if (avfilter_get_by_name("libplacebo") == nullptr) {
    remark = "libplacebo: skipped, libavfilter has no such filter";
    return {};
  }
  AVBufferRef* created = nullptr;
  if (av_hwdevice_ctx_create(&created, AV_HWDEVICE_TYPE_VULKAN, nullptr, nullptr, 0) < 0) {
    remark = "libplacebo: skipped, no Vulkan device";
    return {};
  }
  const std::shared_ptr<AVBufferRef> device(created, FreeBuffer());
  std::vector<Contestant> contestants;
  for (const std::string curve : {"bt.2390", "spline"}) {
    contestants.push_back({"libplacebo " + curve, "",
                           [curve, device](const std::vector<Signal>& pixels, double peakNits) {
                             return MapByFilters(PlaceboFilters(curve), pixels, peakNits,
                                                 device.get());
                           }});
  }
  return contestants;
}

}  // namespace Quality
