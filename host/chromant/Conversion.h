#pragma once

#include <memory>

#include "host/orvcore/Utility.h"
#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/orvmediatypes/ColorSpace.h"
#include "host/orvmediatypes/PixelFormat.h"

namespace IL {
struct ColorConvertParams;
}

namespace CHR {

/// Converts pixels between two colour spaces. Source and destination may be the same memory when
/// formats and row bytes are equal; the row bytes of a single row are not looked at. 0 or a
/// negative code.
int ConvertFrame(const void* sourcePixels, void* destinationPixels, int width, int height,
                 const orvmediatypes::color::ColorSpace& sourceColorSpace,
                 orvmediatypes::PixelFormat sourceFormat, int sourceRowBytes,
                 const orvmediatypes::color::ColorSpace& destinationColorSpace,
                 orvmediatypes::PixelFormat destinationFormat, int destinationRowBytes,
                 const orvmediatypes::color::ColorManagementSettings& settings);

/// The colour space with the same primaries and metadata and a linear transfer.
orvmediatypes::color::ColorSpace ORVColorSpaceToEquivalentLinearColorSpace(
    const orvmediatypes::color::ColorSpace& colorSpace);

/// Linear light of a grey signal value, 1.0 at graphics white.
float ConvertSignalToLinearValue(const orvmediatypes::color::ColorSpace& colorSpace,
                                 const orvmediatypes::color::ColorManagementSettings& settings,
                                 float signal);

/// Whether pixels of the one mean the same colours as pixels of the other. The engine always
/// passes match flag 2: luminance metadata is left out of account.
bool AreColorSpacesEquivalent(const orvmediatypes::color::ColorSpace& first,
                              orvmediatypes::PixelFormat firstFormat,
                              const orvmediatypes::color::ColorSpace& second,
                              orvmediatypes::PixelFormat secondFormat, int matchFlag);

/// Parameters of a conversion from or to a colour space, among them its luminance coefficients.
/// The engine passes true for `linear`.
int GetColorConverterParamsForColorSpace(
    const orvmediatypes::color::ColorSpace& colorSpace, bool linear,
    const orvmediatypes::color::ColorManagementSettings& settings,
    std::shared_ptr<IL::ColorConvertParams>& params, orvcore::utility::Guid& identity);

}  // namespace CHR
