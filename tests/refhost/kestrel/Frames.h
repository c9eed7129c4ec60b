#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/pavix/IVideoFrame.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"

using orvmediatypes::PixelFormat;
using orvmediatypes::color::ColorDescription;

/// Every format there is, by a name for messages.
struct NamedFormat {
  std::string name;
  PixelFormat format;
};
std::vector<NamedFormat> InterleavedFormats();
std::vector<NamedFormat> YCbCrFormats();
/// Those of both that are converted from and to others here.
std::vector<std::vector<NamedFormat>> ConvertedFormats();

/// What is known of a format; a depth of 0 when nothing is.
RefHost::FormatInfo InfoOf(PixelFormat format);

/// R'G'B' with H.273 primaries and transfer.
ColorDescription Rgb(int primaries, int transfer);
/// sRGB colours as luma and chroma.
ColorDescription YCbCr(int matrix, bool fullRange, int chromaLocation = 0);
inline const ColorDescription kSrgb = Rgb(1, 13);

/// A frame in memory of its own, contents undefined.
PX::VideoFrameRef MakeFrame(PixelFormat format, int width, int height,
                            const ColorDescription& colors);

/// A frame whose rows lie in a larger memory that is filled with a guard value, at odd addresses
/// and with an odd pitch where samples are bytes.
class GuardedFrame {
 public:
  GuardedFrame(PixelFormat format, int width, int height, const ColorDescription& colors);

  PX::VideoFrameRef frame;
  /// Whether every byte that is no sample still has the guard value.
  bool IsGuardIntact() const;

 private:
  std::vector<std::vector<std::byte>> memories_;
};

RefHost::Plane PlaneOf(const PX::VideoFrameRef& frame, int index);
std::byte* RowOf(const PX::VideoFrameRef& frame, int plane, int row);

/// A pixel of a float BGRA frame: blue, green, red, alpha.
float* FloatPixel(const PX::VideoFrameRef& frame, int x, int y);

/// Codes of a YCbCr frame in the low bits. `component`: 0 luma, 1 Cb, 2 Cr; positions are the
/// component's own.
unsigned Code(const PX::VideoFrameRef& frame, int component, int x, int y);
void SetCode(const PX::VideoFrameRef& frame, int component, int x, int y, unsigned code);
/// All codes of a component, row by row.
std::vector<unsigned> Codes(const PX::VideoFrameRef& frame, int component);
/// Sample positions of a component.
int ComponentWidth(const PX::VideoFrameRef& frame, int component);
int ComponentHeight(const PX::VideoFrameRef& frame, int component);
/// Largest difference of any two codes; the frames have one chroma format and depth.
unsigned LargestCodeDifference(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b);

/// Fills a frame with noise: any codes, floats from 0 to 1.
void FillWithNoise(const PX::VideoFrameRef& frame, unsigned seed);

/// Fills a float BGRA frame with one opaque colour.
void FillWithColor(const PX::VideoFrameRef& frame, float red, float green, float blue);

/// Fills a float BGRA frame with a smooth picture, 0 to 1, opaque.
void FillWithGradient(const PX::VideoFrameRef& frame);

/// All samples, row by row, without what lies between rows.
std::vector<std::byte> Samples(const PX::VideoFrameRef& frame);

/// CopyFrame with default settings.
int Copy(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to);
