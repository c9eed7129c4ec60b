#include "tests/tools/io/StillTestSupport.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <stdexcept>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"
#include "tools/quillon/io/FramePixels.h"

namespace Quillon::Cli {

namespace fs = std::filesystem;

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

PX::VideoFrameRef MakeFloatFrame(int width, int height, const ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  if (KS::CreateVideoFrame(frame, orvmediatypes::kLinearFloatBGRA, width, height, {}, colorSpace,
                           false, false) < 0) {
    throw std::runtime_error("no frame");
  }
  return frame;
}

}  // namespace

void WriteBytes(const fs::path& path, const Bytes& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

Bytes ReadBytes(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(file), {}};
}

Still ReadStillFromBytes(const Bytes& bytes) {
  const ScratchFolder folder;
  WriteBytes(folder / "picture", bytes);
  return ReadStill(folder / "picture");
}

ColorSpace Tagged(int primaries, int transfer) {
  ColorDescription description;
  description.primaries = static_cast<std::uint8_t>(primaries);
  description.transfer = static_cast<std::uint8_t>(transfer);
  return ColorSpace(description);
}

PX::VideoFrameRef MakePicture(int width, int height, const ColorSpace& colorSpace,
                              const RgbFunction& color) {
  PX::VideoFrameRef frame = MakeFloatFrame(width, height, colorSpace);
  const FramePixels pixels = PixelsOf(frame);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Rgb rgb = color(x, y);
      float* pixel = pixels.Row<float>(y) + 4 * std::ptrdiff_t{x};
      pixel[0] = rgb[2];
      pixel[1] = rgb[1];
      pixel[2] = rgb[0];
      pixel[3] = 1.0F;
    }
  }
  return frame;
}

Rgb Gradient(int x, int y, int width, int height) {
  const float u = static_cast<float>(x) / static_cast<float>(std::max(1, width - 1));
  const float v = static_cast<float>(y) / static_cast<float>(std::max(1, height - 1));
  return {u, v, 0.5F * (2.0F - u - v)};
}

PX::VideoFrameRef AsFloat(const PX::VideoFrameRef& frame) {
  ColorDescription description = frame->GetColorSpace().Description();
  description.matrix = 0;
  description.fullRange = true;
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  PX::VideoFrameRef result = MakeFloatFrame(bounds.width, bounds.height, ColorSpace(description));
  if (KS::VideoFrameManipulators::CopyFrame(frame, result, 4, {}) < 0) {
    throw std::runtime_error("no conversion");
  }
  return result;
}

Rgb PixelAt(const PX::VideoFrameRef& frame, int x, int y) {
  const float* pixel = PixelsOf(frame).Row<float>(y) + 4 * std::ptrdiff_t{x};
  return {pixel[2], pixel[1], pixel[0]};
}

float LargestDifference(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b) {
  const orvcore::geom::Bounds bounds = a->GetBounds();
  if (bounds.width != b->GetBounds().width || bounds.height != b->GetBounds().height) {
    throw std::runtime_error("the pictures differ in size");
  }
  float largest = 0.0F;
  for (int y = 0; y < bounds.height; ++y) {
    for (int x = 0; x < bounds.width; ++x) {
      const Rgb p = PixelAt(a, x, y);
      const Rgb q = PixelAt(b, x, y);
      for (std::size_t c = 0; c < 3; ++c) {
        const float difference = std::abs(p[c] - q[c]);
        if (!(difference <= largest)) largest = difference;
        if (std::isnan(difference)) return std::numeric_limits<float>::infinity();
      }
    }
  }
  return largest;
}

std::optional<Failure> FailureOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const StillError& error) {
    return Failure{error.Kind(), error.what()};
  }
  return std::nullopt;
}

bool HasRemark(const Still& still, const std::string& part) {
  return std::any_of(still.remarks.begin(), still.remarks.end(), [&](const std::string& remark) {
    return remark.find(part) != std::string::npos;
  });
}

}  // namespace Quillon::Cli
