// Maps frames through the engine on the reference host in the floating-point mode that the argument
// names, set before the engine is called for the first time, and prints a line a call: what was
// asked for, the result, and the bits of all pixels in one number. The same call is made several
// times, with as many bands as a frame can have. Exit code 1 when the mode has changed by then, 2
// for a mode that is none.

#include <cfenv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

#include "engine/Quillon.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

constexpr int kWidth = 50;
constexpr int kHeight = 64;

bool SetMode(const std::string& name) {
  static const std::map<std::string, int> kRoundings = {{"nearest", FE_TONEAREST},
                                                        {"downward", FE_DOWNWARD},
                                                        {"upward", FE_UPWARD},
                                                        {"toward-zero", FE_TOWARDZERO}};
  const auto rounding = kRoundings.find(name);
  if (rounding != kRoundings.end()) return std::fesetround(rounding->second) == 0;
#if defined(__SSE2__)
  static const std::map<std::string, unsigned> kFlushes = {
      {"ftz", 0x8000}, {"daz", 0x0040}, {"ftz-daz", 0x8040}};
  const auto flush = kFlushes.find(name);
  if (flush == kFlushes.end()) return false;
  _mm_setcsr(_mm_getcsr() | flush->second);
  return true;
#else
  return false;
#endif
}

/// Rounding and flushing, without the flags of past operations.
unsigned ModeNow() {
#if defined(__SSE2__)
  return _mm_getcsr() & ~0x3FU;
#else
  return static_cast<unsigned>(std::fegetround());
#endif
}

PX::VideoFrameRef MakeFrame(const ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  KS::CreateVideoFrame(frame, orvmediatypes::kLinearFloatBGRA, kWidth, kHeight, {}, colorSpace,
                       false, false);
  return frame;
}

float* PixelsOf(const PX::VideoFrameRef& frame) {
  return static_cast<float*>(
      orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(frame)->GetData());
}

/// Light from subnormal to far above the peak, by integers and powers of two alone.
void Paint(float* pixels) {
  std::uint32_t state = 1;
  for (int i = 0; i < 4 * kWidth * kHeight; ++i) {
    state = state * 1664525U + 1013904223U;
    const std::uint32_t exponent = i % 3 == 0 ? 0 : 60 + (state >> 8) % 74;
    const std::uint32_t bits = (state & 0x807fffffU) | exponent << 23;
    std::memcpy(pixels + i, &bits, sizeof bits);
  }
}

std::uint64_t Digest(const float* pixels) {
  std::uint64_t digest = 14695981039346656037U;
  for (int i = 0; i < 4 * kWidth * kHeight; ++i) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, pixels + i, sizeof bits);
    digest = (digest ^ bits) * 1099511628211U;
  }
  return digest;
}

void Map(int toneMap, int gamut) {
  PX::GamutMappingUtils::GamutMappingSettings settings;
  settings.algorithmType = static_cast<orvmediatypes::color::GamutCompressionAlgorithmType>(gamut);
  auto& record = settings.toneMapSettings;
  ColorDescription wide;
  wide.primaries = 9;
  wide.transfer = 8;
  ColorDescription narrow;
  narrow.primaries = 1;
  narrow.transfer = 8;
  narrow.peakLuminance = 100;
  record.sourceColorSpace = ColorSpace(wide);
  record.destinationColorSpace = ColorSpace(narrow);
  record.controls = {.version = 3, .peak = 4.9F, .peakGain = 1.3F, .colorPreservation = 0.3F};
  record.knee = 0.37F;
  record.algorithmType = static_cast<orvmediatypes::color::ToneMapAlgorithmType>(toneMap);
  const PX::VideoFrameRef source = MakeFrame(record.sourceColorSpace);
  Paint(PixelsOf(source));
  for (int call = 0; call < 20; ++call) {
    PX::VideoFrameRef destination = MakeFrame(record.destinationColorSpace);
    const int result = Quillon::ApplyGamutMapping(source, settings, destination);
    std::printf("%d %d: %d %016llx\n", toneMap, gamut, result,
                static_cast<unsigned long long>(Digest(PixelsOf(destination))));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 || !SetMode(argv[1])) {
    std::fprintf(stderr, "usage: mode-probe nearest|downward|upward|toward-zero|ftz|daz|ftz-daz\n");
    return 2;
  }
  const unsigned mode = ModeNow();
  for (int toneMap = 1; toneMap <= 6; ++toneMap) {
    for (int gamut = 1; gamut <= 2; ++gamut) Map(toneMap, gamut);
  }
  return ModeNow() == mode ? 0 : 1;
}
