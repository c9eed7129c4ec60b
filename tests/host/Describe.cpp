#include "tests/host/Describe.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>

#include "tests/host/Frame.h"
#include "tests/host/Host.h"

namespace scripted {

std::string Describe(const std::string& text) { return text; }

std::string Describe(float value) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  return {text.data(), end};
}

std::string Describe(bool value) { return value ? "true" : "false"; }

std::string Describe(int value) { return std::to_string(value); }

std::string Describe(std::span<const float> values) {
  std::string text = "[";
  for (const float value : values) {
    if (text.size() > 1) text += ' ';
    text += Describe(value);
  }
  return text + "]";
}

std::string Describe(const orvmediatypes::color::ColorSpace& colorSpace) {
  const orvmediatypes::color::ColorDescription& colors = colorSpace.Description();
  if (colors == orvmediatypes::color::ColorDescription()) return "empty";
  std::string text = std::to_string(colors.primaries) + "/" + std::to_string(colors.transfer);
  if (colors.peakLuminance != 0) text += "@" + std::to_string(colors.peakLuminance);
  return text;
}

std::string Describe(orvmediatypes::PixelFormat format) {
  if (format == orvmediatypes::kLinearFloatBGRA) return "BGra";
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%08x:%08x", format.fourCC, format.descriptor);
  return text.data();
}

std::string Describe(const orvmediatypes::color::ColorManagementSettings& settings) {
  return "white " + std::to_string(GraphicsWhite(settings));
}

unsigned GraphicsWhite(const orvmediatypes::color::ColorManagementSettings& settings) {
  std::uint32_t nits = 0;
  static_assert(sizeof(settings) == sizeof(nits));
  std::memcpy(&nits, &settings, sizeof(nits));
  return nits;
}

std::string Describe(const PX::VideoFrameRef& frame) {
  return frame.IsUsable() ? FrameOf(frame).Setup().name : "none";
}

std::string Describe(const PX::GamutMappingUtils::GamutMappingSettings& settings) {
  return &settings == Host::Instance().record ? "record" : "copy";
}

std::string Describe(const PX::ToneMappingUtils::ToneMapSettings& settings) {
  const auto* record = Host::Instance().record;
  return record != nullptr && &settings == &record->toneMapSettings ? "record" : "copy";
}

}  // namespace scripted
