#include "bench/quality/Media.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include "mapper/Frames.h"
#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/FramePixels.h"
#include "tools/quillon/io/Still.h"

namespace Quality {

namespace {

struct Files {
  const char* name;
  const char* picture;
  const char* reference;
};

constexpr std::array<Files, 2> kFiles = {
    {{"seine", "avif/seine_hdr_rec2020.avif", "avif/seine_sdr_gainmap_srgb.avif"},
     {"colors", "avif/colors_hdr_rec2020.avif", "avif/colors_sdr_srgb.avif"}}};

constexpr int kWhite = static_cast<int>(kWhiteNits);

PX::VideoFrameRef Read(const std::filesystem::path& path) {
  return Quillon::Cli::ReadStill(path).frame;
}

template <class Value>
Value Need(Quillon::Mapper::Result<Value> result) {
  if (!result) throw std::runtime_error(result.error().message);
  return *result;
}

/// The pixels of a frame in BT.2020 with the transfer, as `use` makes them of red, green and blue.
template <class Pixel, class Use>
std::vector<Pixel> ConvertedPixels(const PX::VideoFrameRef& frame, std::uint8_t transfer, Use use) {
  orvmediatypes::color::ColorDescription bt2020;
  bt2020.primaries = RefHost::kPrimariesBT2020;
  bt2020.transfer = transfer;
  const auto converted = Need(
      Quillon::Mapper::ConvertToFloat(frame, orvmediatypes::color::ColorSpace(bt2020), kWhite));
  const auto memory = Quillon::Cli::PixelsOf(converted);
  std::vector<Pixel> pixels;
  for (int y = 0; y < memory.height; ++y) {
    const float* row = memory.Row<float>(y);
    for (std::size_t x = 0; x < static_cast<std::size_t>(memory.width); ++x) {
      pixels.push_back(use(row[4 * x + 2], row[4 * x + 1], row[4 * x]));
    }
  }
  return pixels;
}

}  // namespace

std::vector<MediaPair> ReadMediaPairs(const std::filesystem::path& folder) {
  std::vector<MediaPair> pairs;
  for (const Files& files : kFiles) {
    const PX::VideoFrameRef picture = Read(folder / files.picture);
    MediaPair pair;
    pair.name = files.name;
    pair.peakNits = std::ceil(Need(Quillon::Mapper::MeasureLight(picture, kWhite)).peakNits);
    pair.pixels = ConvertedPixels<Signal>(picture, RefHost::kTransferPQ,
                                          [](double red, double green, double blue) {
                                            return Signal{red, green, blue};
                                          });
    pair.reference = ConvertedPixels<Light>(
        Read(folder / files.reference), RefHost::kTransferLinear,
        [](double red, double green, double blue) {
          return Light{kWhiteNits * red, kWhiteNits * green, kWhiteNits * blue};
        });
    if (pair.pixels.size() != pair.reference.size()) {
      throw std::runtime_error(std::string(files.reference) + " has another size than " +
                               files.picture);
    }
    pairs.push_back(std::move(pair));
  }
  return pairs;
}

}  // namespace Quality
