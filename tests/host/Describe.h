#pragma once

#include <span>
#include <string>

#include "host/pavix/GamutMappingUtils.h"
#include "host/pavix/IVideoFrame.h"

namespace scripted {

/// Texts of arguments as the recorded calls show them.

/// Shortest decimal that reads back as the same float.
std::string Describe(const std::string& text);
std::string Describe(float value);
std::string Describe(bool value);
std::string Describe(int value);
/// "[0.5 1 1]".
std::string Describe(std::span<const float> values);
/// "9/16" for primaries 9 and transfer 16; "9/16@1000" with a peak; "empty".
std::string Describe(const orvmediatypes::color::ColorSpace& colorSpace);
/// "BGra", or both words in hex.
std::string Describe(orvmediatypes::PixelFormat format);
/// "white 203".
std::string Describe(const orvmediatypes::color::ColorManagementSettings& settings);
/// The frame's name, or "none".
std::string Describe(const PX::VideoFrameRef& frame);
/// "record" for the record that the test handed in, "copy" for any other.
std::string Describe(const PX::GamutMappingUtils::GamutMappingSettings& settings);
std::string Describe(const PX::ToneMappingUtils::ToneMapSettings& settings);

/// Graphics white in nits, without a recorded call.
unsigned GraphicsWhite(const orvmediatypes::color::ColorManagementSettings& settings);

/// The arguments' texts, separated by ", ".
template <class First, class... Rest>
std::string Arguments(const First& first, const Rest&... rest) {
  std::string text = Describe(first);
  ((text += ", " + Describe(rest)), ...);
  return text;
}

}  // namespace scripted
