#include <algorithm>
#include <cstdio>

#include "mapper/Mapping.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/inspect/Inspection.h"
#include "tools/quillon/plot/NitsAxis.h"

namespace Quillon::Cli {

namespace {

/// Peaks that differ by less agree: lossy coding moves them so far.
constexpr double kTolerance = 1.1;
/// The light that SDR content in an HDR wrapping does not exceed.
constexpr double kSdrNits = 100.0;

std::string Nits(double nits) { return FormatNits(nits) + " nits"; }

void CheckTags(const ClipTags& tags, std::vector<std::string>& warnings) {
  const auto& colors = tags.colors;
  const bool told = colors.transfer != 0 && colors.transfer != RefHost::kUnspecifiedCodePoint;
  const bool hdr =
      colors.transfer == RefHost::kTransferPQ || colors.transfer == RefHost::kTransferHLG;
  const bool hasLight = colors.masteringMaxLuminance > 0.0F || tags.light.maxCLL > 0.0F;
  if (!told) warnings.emplace_back("the transfer function is not told");
  if (colors.primaries == 0) warnings.emplace_back("the primaries are not told");
  if (told && !hdr && colors.transfer != RefHost::kTransferLinear && hasLight) {
    warnings.emplace_back(
        "HDR light levels are given, but the transfer is not an HDR one: tags left over from "
        "before a conversion?");
  }
  for (const std::string& ignored : Mapper::BelieveLight({colors, tags.light}).ignored) {
    warnings.push_back(ignored + " cannot be and is ignored");
  }
}

void CheckMaxCll(double told, const ClipLevels& levels, std::vector<std::string>& warnings) {
  if (told <= 0.0) return;
  if (told > levels.MaxCll() * kTolerance) {
    warnings.push_back("MaxCLL is " + Nits(told) + ", but the brightest pixel has " +
                       Nits(levels.MaxCll()));
  } else if (told * kTolerance < levels.SteadyPeak()) {
    warnings.push_back("MaxCLL is " + Nits(told) + ", but the content reaches " +
                       Nits(levels.SteadyPeak()));
  }
}

}  // namespace

std::vector<std::string> FindDisagreements(const ClipTags& tags,
                                           const std::optional<ClipLevels>& levels) {
  std::vector<std::string> warnings;
  CheckTags(tags, warnings);
  if (!levels || levels->frames.empty()) return warnings;
  CheckMaxCll(tags.light.maxCLL, *levels, warnings);
  if (tags.light.maxFALL > levels->MaxFall() * kTolerance) {
    warnings.push_back("MaxFALL is " + Nits(tags.light.maxFALL) +
                       ", but the brightest picture has " + Nits(levels->MaxFall()) +
                       " on average");
  }
  if (tags.colors.transfer == RefHost::kTransferPQ && levels->MaxCll() <= kSdrNits) {
    warnings.push_back("it is tagged PQ, but never passes " + Nits(kSdrNits) +
                       ": SDR in an HDR wrapping?");
  }
  return warnings;
}

}  // namespace Quillon::Cli
