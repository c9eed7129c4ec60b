#include <algorithm>
#include <cmath>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <sstream>

#include <ImfChannelList.h>
#include <ImfChromaticitiesAttribute.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfInputPart.h>
#include <ImfMultiPartInputFile.h>
#include <ImfPartType.h>
#include <ImfRgbaFile.h>
#include <ImfStandardAttributes.h>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/io/ColorTags.h"
#include "tools/quillon/io/ExrClaims.h"
#include "tools/quillon/io/ExrStreams.h"
#include "tools/quillon/io/FramePixels.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/StillReaders.h"

namespace Quillon::Cli {

using orvmediatypes::color::Chromaticities;
using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

constexpr int kBandRows = 64;

enum class ColorModel { Rgb, Luminance, LuminanceChroma };

/// Reads the rows from `y` on, `count` of them, over the whole width of the data window, as blue,
/// green, red and alpha.
using BandReader = std::function<void(int y, int count, float* pixels)>;

bool Has(const Imf::Header& header, const char* channel) {
  return header.channels().findChannel(channel) != nullptr;
}

bool HasColor(const Imf::Header& header) {
  const bool deep = header.hasType() && Imf::isDeepData(header.type());
  return !deep && (Has(header, "R") || Has(header, "G") || Has(header, "B") || Has(header, "Y"));
}

ColorModel ModelOf(const Imf::Header& header) {
  if (Has(header, "R") || Has(header, "G") || Has(header, "B")) return ColorModel::Rgb;
  return Has(header, "RY") && Has(header, "BY") ? ColorModel::LuminanceChroma
                                                : ColorModel::Luminance;
}

int FindColorPart(const StillSource& source, const Imf::MultiPartInputFile& file) {
  for (int part = 0; part < file.parts(); ++part) {
    if (HasColor(file.header(part))) return part;
  }
  FailNotSupported(source, "no part of it has flat channels named R, G, B or Y",
                   "write the picture into channels of these names");
}

Chromaticities FromExr(const Imf::Chromaticities& colors) {
  return {{colors.red.x, colors.red.y},
          {colors.green.x, colors.green.y},
          {colors.blue.x, colors.blue.y},
          {colors.white.x, colors.white.y}};
}

ColorSpace ReadColorSpace(const Imf::Header& header, std::vector<std::string>& remarks) {
  ColorDescription description = RgbDescription(RefHost::kPrimariesBT709, RefHost::kTransferLinear);
  if (Imf::hasChromaticities(header)) {
    if (!SetPrimaries(description, FromExr(Imf::chromaticities(header)))) {
      remarks.emplace_back("the chromaticities attribute describes no colours and was ignored");
    }
  }
  return ColorSpace(description);
}

/// 0 where it is not told, or cannot be.
float ReadWhite(const Imf::Header& header, std::vector<std::string>& remarks) {
  constexpr float kMost = 1e6F;
  if (!Imf::hasWhiteLuminance(header)) return 0.0F;
  const float nits = Imf::whiteLuminance(header);
  if (nits > 0.0F && nits <= kMost) return nits;
  std::ostringstream text;
  text << "the whiteLuminance of " << nits << " nits cannot be and was ignored";
  remarks.push_back(text.str());
  return 0.0F;
}

void RemarkOnAspect(const Imf::Header& header, std::vector<std::string>& remarks) {
  const float aspect = header.pixelAspectRatio();
  if (aspect == 1.0F) return;
  std::ostringstream text;
  text << "pixel aspect ratio " << aspect << " ignored";
  remarks.push_back(text.str());
}

void RequireFullSampling(const StillSource& source, const Imf::Header& header) {
  for (const char* name : {"R", "G", "B", "A"}) {
    const Imf::Channel* channel = header.channels().findChannel(name);
    if (channel != nullptr && (channel->xSampling != 1 || channel->ySampling != 1)) {
      FailNotSupported(source, std::string("channel ") + name + " is subsampled",
                       "write it at full resolution");
    }
  }
}

void RemarkOnMissingChannels(const Imf::Header& header, std::vector<std::string>& remarks) {
  for (const char* name : {"R", "G", "B"}) {
    if (!Has(header, name)) {
      remarks.push_back(std::string("there is no channel ") + name + ": read as 0");
    }
  }
}

/// R, G and B, or Y alone.
BandReader MakePlainReader(Imf::MultiPartInputFile& file, int partNumber, ColorModel model) {
  auto part = std::make_shared<Imf::InputPart>(file, partNumber);
  return [part, model](int y, int count, float* pixels) {
    const Imath::Box2i data = part->header().dataWindow();
    const auto width = static_cast<std::int64_t>(data.max.x) - data.min.x + 1;
    constexpr std::size_t kPixelBytes = 4 * sizeof(float);
    Imf::FrameBuffer buffer;
    const auto insert = [&](const char* name, int component, double fill) {
      buffer.insert(
          name,
          Imf::Slice::Make(Imf::FLOAT, pixels + component, Imath::V2i(data.min.x, y), width, count,
                           kPixelBytes, kPixelBytes * static_cast<std::size_t>(width), 1, 1, fill));
    };
    if (model == ColorModel::Rgb) {
      insert("B", 0, 0.0);
      insert("G", 1, 0.0);
      insert("R", 2, 0.0);
    } else {
      insert("Y", 0, 0.0);
    }
    insert("A", 3, 1.0);
    part->setFrameBuffer(buffer);
    part->readPixels(y, y + count - 1);
    if (model == ColorModel::Rgb) return;
    for (std::int64_t i = 0; i < width * count; ++i) {
      pixels[4 * i + 1] = pixels[4 * i + 2] = pixels[4 * i];
    }
  };
}

/// Y with RY and BY, by OpenEXR's own conversion, which works on half.
BandReader MakeLuminanceChromaReader(const StillSource& source) {
  struct Input {
    explicit Input(const StillSource& from)
        : stream(from.path.string(), from.bytes), file(stream) {}
    ExrMemoryInput stream;
    Imf::RgbaInputFile file;
    std::vector<Imf::Rgba> pixels;
  };
  auto input = std::make_shared<Input>(source);
  return [input](int y, int count, float* pixels) {
    const Imath::Box2i data = input->file.dataWindow();
    const auto width = static_cast<std::int64_t>(data.max.x) - data.min.x + 1;
    input->pixels.resize(static_cast<std::size_t>(width) * kBandRows);
    // OpenEXR wants the address of pixel (0, 0), which lies outside the band.
    const std::int64_t offset = (y * width + data.min.x) * std::int64_t{sizeof(Imf::Rgba)};
    const auto base = reinterpret_cast<std::uintptr_t>(input->pixels.data()) -
                      static_cast<std::uintptr_t>(offset);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the arithmetic must not be a pointer's
    input->file.setFrameBuffer(reinterpret_cast<Imf::Rgba*>(base), 1,
                               static_cast<std::size_t>(width));
    input->file.readPixels(y, y + count - 1);
    for (std::int64_t i = 0; i < width * count; ++i) {
      const Imf::Rgba& pixel = input->pixels[static_cast<std::size_t>(i)];
      pixels[4 * i] = pixel.b;
      pixels[4 * i + 1] = pixel.g;
      pixels[4 * i + 2] = pixel.r;
      pixels[4 * i + 3] = pixel.a;
    }
  };
}

void FillBlack(const FramePixels& pixels) {
  for (int y = 0; y < pixels.height; ++y) {
    float* row = pixels.Row<float>(y);
    for (std::ptrdiff_t x = 0; x < pixels.width; ++x) {
      std::fill_n(row + 4 * x, 3, 0.0F);
      row[4 * x + 3] = 1.0F;
    }
  }
}

/// Puts what the data window and the display window have in common where it belongs.
void ReadWindow(const BandReader& readBand, const Imath::Box2i& display, const Imath::Box2i& data,
                const FramePixels& pixels) {
  const auto dataWidth = static_cast<std::ptrdiff_t>(data.max.x) - data.min.x + 1;
  const int left = std::max(display.min.x, data.min.x);
  const int right = std::min(display.max.x, data.max.x);
  const int top = std::max(display.min.y, data.min.y);
  const int bottom = std::min(display.max.y, data.max.y);
  if (left > right) return;
  std::vector<float> band(static_cast<std::size_t>(dataWidth) * kBandRows * 4);
  for (std::int64_t y = top; y <= bottom; y += kBandRows) {
    const int count = static_cast<int>(std::min<std::int64_t>(kBandRows, bottom - y + 1));
    readBand(static_cast<int>(y), count, band.data());
    for (int row = 0; row < count; ++row) {
      const float* from = band.data() + 4 * (row * dataWidth + (std::ptrdiff_t{left} - data.min.x));
      float* to = pixels.Row<float>(static_cast<int>(y + row - display.min.y)) +
                  4 * (std::ptrdiff_t{left} - display.min.x);
      std::copy_n(from, 4 * (std::ptrdiff_t{right} - left + 1), to);
    }
  }
}

bool Contains(const Imath::Box2i& outer, const Imath::Box2i& inner) {
  return inner.min.x >= outer.min.x && inner.min.y >= outer.min.y && inner.max.x <= outer.max.x &&
         inner.max.y <= outer.max.y;
}

void CheckWindow(const StillSource& source, const Imath::Box2i& window) {
  CheckDimensions(source, std::int64_t{window.max.x} - window.min.x + 1,
                  std::int64_t{window.max.y} - window.min.y + 1);
}

BandReader MakeBandReader(const StillSource& source, Imf::MultiPartInputFile& file, int part,
                          ColorModel model) {
  if (model != ColorModel::LuminanceChroma) return MakePlainReader(file, part, model);
  if (part != 0) {
    FailNotSupported(source, "the channels Y, RY and BY are in a part after the first",
                     "write them into the first part");
  }
  return MakeLuminanceChromaReader(source);
}

Still ReadPart(const StillSource& source, Imf::MultiPartInputFile& file, int part) {
  const Imf::Header& header = file.header(part);
  const Imath::Box2i display = header.displayWindow();
  const Imath::Box2i data = header.dataWindow();
  CheckWindow(source, display);
  CheckWindow(source, data);
  if (!file.partComplete(part)) FailDamaged(source, "parts of the picture are missing");

  Still still;
  const ColorModel model = ModelOf(header);
  if (model == ColorModel::Rgb) {
    RequireFullSampling(source, header);
    RemarkOnMissingChannels(header, still.remarks);
  }
  still.frame =
      MakeFrame(source, orvmediatypes::kLinearFloatBGRA, display.max.x - display.min.x + 1,
                display.max.y - display.min.y + 1, ReadColorSpace(header, still.remarks));
  const FramePixels pixels = PixelsOf(still.frame);
  if (!Contains(data, display)) {
    FillBlack(pixels);
    still.remarks.emplace_back("the data window does not fill the picture: the rest is black");
  }
  ReadWindow(MakeBandReader(source, file, part, model), display, data, pixels);
  if (MakeOpaque(pixels, 1.0F)) still.remarks.emplace_back(kAlphaDropped);
  RemarkOnAspect(header, still.remarks);
  still.whiteNits = ReadWhite(header, still.remarks);
  return still;
}

}  // namespace

Still ReadExr(const StillSource& source) {
  CheckExrClaims(source);
  try {
    ExrMemoryInput stream(source.path.string(), source.bytes);
    Imf::MultiPartInputFile file(stream);
    return ReadPart(source, file, FindColorPart(source, file));
  } catch (const StillError&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    FailDamaged(source, error.what());
  }
}

}  // namespace Quillon::Cli
