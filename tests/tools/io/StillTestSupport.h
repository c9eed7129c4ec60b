#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/pavix/IVideoFrame.h"
#include "tests/tools/ScratchFolder.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/io/StillError.h"

namespace Quillon::Cli {

using Bytes = std::vector<std::uint8_t>;

void WriteBytes(const std::filesystem::path& path, const Bytes& bytes);
Bytes ReadBytes(const std::filesystem::path& path);

/// Reads a picture from bytes, by way of a file.
Still ReadStillFromBytes(const Bytes& bytes);

/// Red, green, blue.
using Rgb = std::array<float, 3>;
using RgbFunction = std::function<Rgb(int x, int y)>;

orvmediatypes::color::ColorSpace Tagged(int primaries, int transfer);

/// A float BGRA frame.
PX::VideoFrameRef MakePicture(int width, int height,
                              const orvmediatypes::color::ColorSpace& colorSpace,
                              const RgbFunction& color);

/// A smooth picture that uses the whole range 0 to 1 of every component.
Rgb Gradient(int x, int y, int width, int height);

/// Any frame as float BGRA in its own colour space, with the range and matrix of R'G'B'.
PX::VideoFrameRef AsFloat(const PX::VideoFrameRef& frame);

/// A pixel of a float BGRA frame.
Rgb PixelAt(const PX::VideoFrameRef& frame, int x, int y);

/// Largest difference of a component of two float BGRA frames of equal size.
float LargestDifference(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b);

struct Failure {
  StillErrorKind kind;
  std::string message;
};

/// How an operation fails, or nothing when it succeeds. Exceptions of other kinds pass.
std::optional<Failure> FailureOf(const std::function<void()>& operation);

bool HasRemark(const Still& still, const std::string& part);

}  // namespace Quillon::Cli
