#include "tests/tools/lut/SignalPictures.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "host/kestrel/CreateFrames.h"
#include "refhost/kestrel/PixelFormats.h"
#include "tools/quillon/io/FramePixels.h"
#include "tools/quillon/io/WriteStill.h"

namespace Quillon::Cli {

void WriteSignals(const std::filesystem::path& path, const std::vector<Signal>& signals,
                  int width) {
  orvmediatypes::color::ColorDescription description;
  description.primaries = 9;
  description.transfer = 8;
  StillOutput output;
  output.depth = 32;
  const auto height = static_cast<int>(signals.size() / static_cast<std::size_t>(width));
  if (KS::CreateVideoFrame(output.frame, orvmediatypes::kLinearFloatBGRA, width, height, {},
                           orvmediatypes::color::ColorSpace(description), false, false) < 0) {
    throw std::runtime_error("no frame");
  }
  const FramePixels pixels = PixelsOf(output.frame);
  auto signal = signals.begin();
  for (int y = 0; y < height; ++y) {
    auto* pixel = pixels.Row<float>(y);
    for (int x = 0; x < width; ++x, ++signal) {
      for (const float value : {(*signal)[2], (*signal)[1], (*signal)[0], 1.0F}) *pixel++ = value;
    }
  }
  WriteStill(output, path);
}

std::vector<Signal> ReadSignals(const std::filesystem::path& path) {
  const Still still = ReadStill(path);
  if (still.frame->GetPixelFormat() != RefHost::kBgra16)
    throw std::runtime_error("no 16-bit picture");
  const FramePixels pixels = PixelsOf(still.frame);
  std::vector<Signal> signals;
  for (int y = 0; y < pixels.height; ++y) {
    const auto* pixel = pixels.Row<std::uint16_t>(y);
    for (int x = 0; x < pixels.width; ++x, pixel += 4) {
      const auto at = [pixel](int c) { return static_cast<float>(pixel[c] / 65535.0); };
      signals.push_back({at(2), at(1), at(0)});
    }
  }
  return signals;
}

}  // namespace Quillon::Cli
