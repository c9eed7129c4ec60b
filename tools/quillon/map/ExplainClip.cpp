#include "tools/quillon/map/ExplainClip.h"

#include <algorithm>
#include <iomanip>

#include "tools/quillon/map/ClipRun.h"
#include "tools/quillon/options/ColorSpaceNames.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace Quillon::Cli {

namespace {

std::ostream& Label(std::ostream& out, const char* label) {
  return out << std::left << std::setw(18) << label;
}

template <class Value, std::size_t Count>
std::string_view NameOf(const std::array<Choice<Value>, Count>& choices, Value value) {
  const auto found = std::find_if(choices.begin(), choices.end(),
                                  [value](const auto& choice) { return choice.value == value; });
  return found->name;
}

void ExplainLight(std::ostream& out, const char* label, const ClipTags& tags) {
  Label(out, label) << DescribeColorSpace(tags.colors)
                    << (tags.colors.fullRange ? ", full range" : ", narrow range");
  if (tags.colors.masteringMaxLuminance > 0.0F) {
    out << ", mastering display " << tags.colors.masteringMinLuminance << " to "
        << tags.colors.masteringMaxLuminance << " nits";
  }
  if (tags.light.maxCLL > 0.0F) {
    out << ", MaxCLL " << tags.light.maxCLL << ", MaxFALL " << tags.light.maxFALL << " nits";
  }
  out << '\n';
}

}  // namespace

void ExplainClip(std::ostream& out, const ClipRun& run) {
  ExplainLight(out, "input tags", run.source->Info().tags);
  if (const auto& exposure = run.mapper->ExposureOfClip()) {
    Label(out, "exposure") << exposure->Describe(run.mapper->Plan().Decide().settings.white)
                           << '\n';
  }
  for (const ClipScene& scene : run.mapper->Scenes()) {
    Label(out, "scene") << "frames " << scene.first << '-' << scene.first + scene.count - 1
                        << ", peak " << scene.peak << " nits\n";
  }
  if (!run.encoding) return;
  const Encoding& encoding = *run.encoding;
  ExplainLight(out, "output tags", encoding.tags);
  Label(out, "encoder") << NameOf(kVideoCodecs, encoding.codec) << ", "
                        << av_get_pix_fmt_name(encoding.pixelFormat);
  if (encoding.quality) out << ", quality " << *encoding.quality;
  if (!encoding.preset.empty()) out << ", preset " << encoding.preset;
  out << '\n';
}

}  // namespace Quillon::Cli
