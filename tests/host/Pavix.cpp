#include "host/pavix/ColorSpaceUtils.h"
#include "host/pavix/ColorSpaces.h"
#include "host/pavix/GamutMappingUtils.h"
#include "host/pavix/ToneMappingUtils.h"
#include "tests/host/Describe.h"
#include "tests/host/Host.h"
#include "tests/host/Settings.h"

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::GamutCompressionAlgorithmType;
using orvmediatypes::color::ToneMapAlgorithmType;
using scripted::Arguments;
using scripted::Describe;
using scripted::Host;

namespace {

constexpr int kLinearTransfer = 8;
constexpr int kPQTransfer = 16;
constexpr int kHlgTransfer = 18;

template <class Enum>
std::string NameOf(const char* kind, Enum value) {
  return kind + std::to_string(static_cast<int>(value));
}

}  // namespace

namespace PX::ToneMappingUtils {

float ConvertPeakLinearSignalToLuminance(const ToneMapSettings& settings) {
  const bool normal =
      Host::Instance()
          .Enter("PX::ToneMappingUtils::ConvertPeakLinearSignalToLuminance", Arguments(settings))
          .IsNormal();
  return normal ? Host::Instance().results.peakNits : 0.0F;
}

int AdjustToneMapSettingsVersionForNCMVersionHandle(int version) {
  const bool normal =
      Host::Instance()
          .Enter("PX::ToneMappingUtils::AdjustToneMapSettingsVersionForNCMVersionHandle",
                 Arguments(version))
          .IsNormal();
  return normal ? Host::Instance().results.adjustVersion(version) : 0;
}

void GetAdjustedToneMapAlgoAndKnee(float peak, ToneMapAlgorithmType& algorithmType, float& knee) {
  const bool normal = Host::Instance()
                          .Enter("PX::ToneMappingUtils::GetAdjustedToneMapAlgoAndKnee",
                                 Arguments(peak, static_cast<int>(algorithmType), knee))
                          .IsNormal();
  if (normal) Host::Instance().results.automaticChoice(peak, algorithmType, knee);
}

std::string GetLocalizedToneMappingMethodName(ToneMapAlgorithmType algorithmType, int form) {
  const bool normal = Host::Instance()
                          .Enter("PX::ToneMappingUtils::GetLocalizedToneMappingMethodName",
                                 Arguments(static_cast<int>(algorithmType), form))
                          .IsNormal();
  return normal ? NameOf("tone map ", algorithmType) : std::string();
}

}  // namespace PX::ToneMappingUtils

namespace PX::GamutMappingUtils {

std::string GetGamutCompressionMethodName(GamutCompressionAlgorithmType algorithmType, int form) {
  const bool normal = Host::Instance()
                          .Enter("PX::GamutMappingUtils::GetGamutCompressionMethodName",
                                 Arguments(static_cast<int>(algorithmType), form))
                          .IsNormal();
  return normal ? NameOf("gamut compression ", algorithmType) : std::string();
}

}  // namespace PX::GamutMappingUtils

namespace PX::ColorSpaceUtils {

namespace {

bool IsHDR(const ColorSpace& colorSpace) {
  const int transfer = colorSpace.Description().transfer;
  return transfer == kPQTransfer || transfer == kHlgTransfer;
}

/// Whether the call is to answer as usual.
bool Ask(const char* operation, const ColorSpace& colorSpace) {
  return Host::Instance()
      .Enter(std::string("PX::ColorSpaceUtils::") + operation, Describe(colorSpace))
      .IsNormal();
}

}  // namespace

bool IsNewColorManagementEnabled() {
  const bool normal =
      Host::Instance().Enter("PX::ColorSpaceUtils::IsNewColorManagementEnabled", {}).IsNormal();
  return normal && Host::Instance().results.newColorManagement;
}

bool IsSDRColorSpace(const ColorSpace& colorSpace) {
  const int transfer = colorSpace.Description().transfer;
  return Ask("IsSDRColorSpace", colorSpace) && transfer != 0 && transfer != kLinearTransfer &&
         !IsHDR(colorSpace);
}

bool IsHDRColorSpace(const ColorSpace& colorSpace) {
  return Ask("IsHDRColorSpace", colorSpace) && IsHDR(colorSpace);
}

bool IsRec2100HLGColorSpace(const ColorSpace& colorSpace) {
  return Ask("IsRec2100HLGColorSpace", colorSpace) &&
         colorSpace.Description().transfer == kHlgTransfer;
}

int GetPeakLuminance(const ColorSpace& colorSpace) {
  return Ask("GetPeakLuminance", colorSpace) ? Host::Instance().results.peakLuminance : 0;
}

bool GetIfExistsPeakLuminanceFromColorSpaceMetaData(const ColorSpace& colorSpace, int& nits) {
  const bool normal =
      Host::Instance()
          .Enter("PX::ColorSpaceUtils::GetIfExistsPeakLuminanceFromColorSpaceMetaData",
                 Arguments(colorSpace, nits))
          .IsNormal();
  if (!normal || colorSpace.Description().peakLuminance == 0) return false;
  nits = colorSpace.Description().peakLuminance;
  return true;
}

}  // namespace PX::ColorSpaceUtils

namespace PX::ColorSpaces {

namespace {
const ColorSpace kBT2100PQ(scripted::kPQ);
}  // namespace

const ColorSpace& OR2100PQ() {
  Host::Instance().Enter("PX::ColorSpaces::OR2100PQ", {});
  return kBT2100PQ;
}

}  // namespace PX::ColorSpaces
