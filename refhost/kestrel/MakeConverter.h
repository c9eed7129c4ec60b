#pragma once

#include <memory>

#include "refhost/chromant/PixelConverter.h"

namespace RefHost {

/// What takes one colour space's pixels to another's; null where equal signals are equal colours,
/// also where no one knows which colours. 0, or `kNotSupported` where there is no such conversion.
int MakeConverter(const orvmediatypes::color::ColorSpace& from,
                  const orvmediatypes::color::ColorSpace& to,
                  const orvmediatypes::color::ColorManagementSettings& settings,
                  std::shared_ptr<const PixelConverter>& converter);

}  // namespace RefHost
