// minimal-host VECTORS: maps pixels on this host and compares them with what others computed. Each
// line of VECTORS is a pixel, the parameters of the hue-preserving curve, and the pixel it becomes.

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "engine/Quillon.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"

namespace {

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;
using PX::GamutMappingUtils::GamutMappingSettings;

using Pixel = std::array<float, 4>;

// More rows than there are bands, and not a multiple.
constexpr int kWidth = 3;
constexpr int kHeight = 21;

constexpr std::uint8_t kLinear = 8;
constexpr std::uint8_t kPQ = 16;

ColorSpace Bt2020(std::uint8_t transfer) {
  ColorDescription description;
  description.primaries = 9;
  description.transfer = transfer;
  return ColorSpace(description);
}

PX::VideoFrameRef MakeFrame(const ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  KS::CreateVideoFrame(frame, orvmediatypes::kLinearFloatBGRA, kWidth, kHeight, {}, colorSpace,
                       false, false);
  return frame;
}

char* BytesOf(const PX::VideoFrameRef& frame) {
  const auto memory = orvcore::classref::InterfaceCast<KS::IVideoFrameMemoryAccess>(frame);
  return static_cast<char*>(memory->GetData());
}

Pixel PixelOf(const PX::VideoFrameRef& frame, int index) {
  Pixel pixel{};
  std::memcpy(pixel.data(), BytesOf(frame) + index * sizeof(pixel), sizeof(pixel));
  return pixel;
}

GamutMappingSettings SettingsOf(std::uint8_t transfer, ToneMapAlgorithmType algorithm, float peak) {
  GamutMappingSettings settings;
  settings.toneMapSettings.sourceColorSpace = Bt2020(transfer);
  settings.toneMapSettings.destinationColorSpace = Bt2020(kLinear);
  settings.toneMapSettings.controls.peak = peak;
  settings.toneMapSettings.algorithmType = algorithm;
  return settings;
}

/// Maps a frame whose pixels are all alike. The engine's code.
int Map(const Pixel& pixel, const GamutMappingSettings& settings, PX::VideoFrameRef& destination) {
  const PX::VideoFrameRef source = MakeFrame(settings.toneMapSettings.sourceColorSpace);
  destination = MakeFrame(settings.toneMapSettings.destinationColorSpace);
  for (int i = 0; i < kWidth * kHeight; ++i) {
    std::memcpy(BytesOf(source) + i * sizeof(pixel), pixel.data(), sizeof(pixel));
  }
  return Quillon::ApplyGamutMapping(source, settings, destination);
}

/// Each pixel must be `expected`, within the tolerance; 0 asks for the same bits.
bool BecomesEverywhere(const Pixel& pixel, const GamutMappingSettings& settings,
                       const Pixel& expected, float tolerance) {
  PX::VideoFrameRef mapped;
  if (const int code = Map(pixel, settings, mapped); code != 0) {
    std::printf("the engine refused with 0x%08X\n", static_cast<unsigned>(code));
    return false;
  }
  for (int i = 0; i < kWidth * kHeight; ++i) {
    const Pixel got = PixelOf(mapped, i);
    bool same = tolerance > 0.0F || std::memcmp(&got, &expected, sizeof(got)) == 0;
    for (int c = 0; c < 4; ++c) same = same && std::fabs(got[c] - expected[c]) <= tolerance;
    if (same) continue;
    std::printf("pixel %d is %a %a %a %a, expected %a %a %a %a\n", i, got[0], got[1], got[2],
                got[3], expected[0], expected[1], expected[2], expected[3]);
    return false;
  }
  return true;
}

using Row = std::map<std::string, std::string>;

Row ReadRow(const std::string& line, const std::string& names) {
  std::istringstream fields(line);
  std::istringstream columns(names);
  Row row;
  for (std::string name, field; std::getline(columns, name, ',');) {
    std::getline(fields, field, ',');
    row[name] = field;
  }
  return row;
}

float Number(const Row& row, const std::string& name) {
  return std::strtof(row.at(name).c_str(), nullptr);
}

/// What settings can ask for: the destination's peak at graphics white, all numbers finite, and the
/// scaled peak equal to gain times peak.
bool CanBeAskedFor(const Row& row) {
  for (const char* name : {"p0", "p1", "p2", "p3", "v0", "v1", "e0", "e1", "e2", "e3"}) {
    if (!std::isfinite(Number(row, name))) return false;
  }
  return row.at("nan") == "fff" && Number(row, "v2") == 1.0F &&
         Number(row, "gain") * Number(row, "peak") == Number(row, "v0");
}

bool MapsVectors(const char* fileName) {
  std::ifstream file(fileName);
  std::string names;
  std::getline(file, names);
  int mapped = 0;
  for (std::string line; std::getline(file, line);) {
    const Row row = ReadRow(line, names);
    if (!CanBeAskedFor(row)) continue;
    GamutMappingSettings settings =
        SettingsOf(kLinear, ToneMapAlgorithmType::HuePreservationDesaturation, Number(row, "peak"));
    settings.toneMapSettings.controls.peakGain = Number(row, "gain");
    settings.toneMapSettings.controls.colorPreservation = Number(row, "cp");
    settings.toneMapSettings.knee = Number(row, "v1");
    const Pixel pixel = {Number(row, "p0"), Number(row, "p1"), Number(row, "p2"),
                         Number(row, "p3")};
    const Pixel expected = {Number(row, "e0"), Number(row, "e1"), Number(row, "e2"),
                            Number(row, "e3")};
    if (!BecomesEverywhere(pixel, settings, expected, 0.0F)) {
      std::printf("in row %s of %s\n", row.at("id").c_str(), fileName);
      return false;
    }
    ++mapped;
  }
  std::printf("%d vectors\n", mapped);
  return mapped >= 100;
}

/// Of a PQ source with a peak of 1000 nits (code 0.751827) the peak becomes 1.0, graphics white;
/// 100 nits (code 0.508078) lie below the knee and keep their light, 100/203 of white (ITU-R
/// BT.2408, table 1).
bool MapsPQ() {
  const auto settings =
      SettingsOf(kPQ, ToneMapAlgorithmType::HuePreservationDesaturation, 0.7518271F);
  return BecomesEverywhere({0.7518271F, 0.7518271F, 0.7518271F, 0.5F}, settings,
                           {1.0F, 1.0F, 1.0F, 0.5F}, 1e-5F) &&
         BecomesEverywhere({0.5080784F, 0.5080784F, 0.5080784F, 0.25F}, settings,
                           {100.0F / 203.0F, 100.0F / 203.0F, 100.0F / 203.0F, 0.25F}, 1e-5F);
}

bool CopiesWithConversionWhereThereIsNothingToMap() {
  return BecomesEverywhere({0.5806889F, 0.0F, 0.5080784F, 1.0F},
                           SettingsOf(kPQ, ToneMapAlgorithmType::None, 1.0F),
                           {1.0F, 0.0F, 100.0F / 203.0F, 1.0F}, 1e-5F);
}

/// An algorithm that nobody knows is refused, and this host's trace says so.
bool RefusesTheUnknown() {
  PX::VideoFrameRef destination;
  const auto settings = SettingsOf(kLinear, static_cast<ToneMapAlgorithmType>(7), 4.0F);
  return Map({1.0F, 1.0F, 1.0F, 1.0F}, settings, destination) == static_cast<int>(0xA00F000CU);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  return MapsVectors(argv[1]) && MapsPQ() && CopiesWithConversionWhereThereIsNothingToMap() &&
                 RefusesTheUnknown()
             ? 0
             : 1;
}
