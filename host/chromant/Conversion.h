#pragma once

#include <memory>

#include "host/orvcore/Utility.h"
#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/orvmediatypes/ColorSpace.h"
#include "host/orvmediatypes/PixelFormat.h"

namespace IL {
struct ColorConvertParams;
}

// Linear light has 1.0 at the graphics white of the settings: light that is shown, after the OOTF.
// All of this is called on the thread of the engine's caller, and from several threads at once
// where several frames are mapped. What pointers and references refer to is used until the function
// returns, and no longer.

namespace CHR {

/// Converts pixels between two colour spaces: decoding, primaries, encoding. Floats beyond 0 to 1
/// are converted like others and not clamped: gamut compression works on them. Alpha is kept.
///
///   sourcePixels, destinationPixels   first pixel of each; the caller's. They may be the same
///                                     memory, with formats and row bytes equal
///   width, height                     pixels; of whole frames, of one pixel, or of two in a row
///   ...ColorSpace                     what the pixels mean, and are to mean
///   ...Format                         linear float BGRA on both sides
///   ...RowBytes                       bytes from the start of a row to that of the next, not below
///                                     0; not looked at for a single row, where the engine passes 1
///                                     in places
///   settings                          graphics white, and what else a conversion needs to know
///
/// 0 or above, or a negative code. For frames the engine hands the code on, and the destination may
/// hold anything. For single pixels, from which it wants to know a peak, it goes on with the signal
/// as it was, or with a default; BT.2390 is refused with 0xA00F000F.
int ConvertFrame(const void* sourcePixels, void* destinationPixels, int width, int height,
                 const orvmediatypes::color::ColorSpace& sourceColorSpace,
                 orvmediatypes::PixelFormat sourceFormat, int sourceRowBytes,
                 const orvmediatypes::color::ColorSpace& destinationColorSpace,
                 orvmediatypes::PixelFormat destinationFormat, int destinationRowBytes,
                 const orvmediatypes::color::ColorManagementSettings& settings);

/// The colour space with the same primaries and metadata and a linear transfer. That of a linear
/// space is itself.
orvmediatypes::color::ColorSpace ORVColorSpaceToEquivalentLinearColorSpace(
    const orvmediatypes::color::ColorSpace& colorSpace);

/// Linear light of a grey whose three signals are `signal`, 1.0 at graphics white.
float ConvertSignalToLinearValue(const orvmediatypes::color::ColorSpace& colorSpace,
                                 const orvmediatypes::color::ColorManagementSettings& settings,
                                 float signal);

/// Whether pixels of the one mean the same colours as pixels of the other. The engine passes linear
/// float BGRA for both formats and 2 for `matchFlag`: luminance metadata is left out of account.
bool AreColorSpacesEquivalent(const orvmediatypes::color::ColorSpace& first,
                              orvmediatypes::PixelFormat firstFormat,
                              const orvmediatypes::color::ColorSpace& second,
                              orvmediatypes::PixelFormat secondFormat, int matchFlag);

/// Parameters of a conversion from or to a colour space, of which the engine reads the luminance
/// coefficients. It passes true for `linear`. `params` comes in empty and goes out shared with the
/// host; left empty, the coefficients are 0. The engine looks at neither `identity` nor the result,
/// which is 0 or a negative code.
int GetColorConverterParamsForColorSpace(
    const orvmediatypes::color::ColorSpace& colorSpace, bool linear,
    const orvmediatypes::color::ColorManagementSettings& settings,
    std::shared_ptr<IL::ColorConvertParams>& params, orvcore::utility::Guid& identity);

}  // namespace CHR
