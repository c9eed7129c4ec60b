#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "host/pavix/IVideoFrame.h"
#include "mapper/Mapping.h"
#include "tools/quillon/io/PixelLimit.h"

namespace Quillon::Cli {

using Mapper::ContentLight;

/// A still picture as a file gives it.
struct Still {
  /// In system memory, alpha 1 throughout. EXR, Radiance and narrow-range RGB come as float BGRA,
  /// PNG as 8-bit or 16-bit BGRA, AVIF as planar YCbCr of its own depth and chroma format (4:0:0 as
  /// 4:2:0 with neutral chroma) or, where it holds RGB or is to be turned, as float BGRA.
  ///
  /// The colour space is what the file says: primaries and transfer are 0 where it says nothing,
  /// and then the matrix, range and chroma location of YCbCr samples are still given. Primaries
  /// that have no H.273 code point are 2 with coordinates.
  PX::VideoFrameRef frame;
  ContentLight light;
  /// Luminance in nits that the file gives its linear 1.0; 0: not given.
  float whiteNits = 0.0F;
  /// Sentences for the user on what was left out or taken for granted.
  std::vector<std::string> remarks;
};

/// Reads an EXR, Radiance HDR, PNG or AVIF file, told apart by its first bytes. At most 65535
/// pixels wide and high and `maxPixels` in all; memory is taken for no more pixels than the bytes
/// of the file can hold. Throws StillError.
Still ReadStill(const std::filesystem::path& path, std::int64_t maxPixels = kDefaultMaxPixels);

/// Whether a file begins as a still that is read here, by its first bytes. Throws StillError
/// (CannotRead) where it cannot be read, is empty, or begins as a picture of another format.
bool IsStill(const std::filesystem::path& path);

}  // namespace Quillon::Cli
