#pragma once

#include <memory>

#include "refhost/chromant/PixelConverter.h"
#include "refhost/chromant/PixelRows.h"
#include "refhost/kestrel/BandCopy.h"
#include "refhost/kestrel/FrameView.h"

namespace RefHost {

/// The component type of an interleaved format.
ComponentType ComponentTypeOf(const FormatInfo& info);

/// Copies between interleaved formats and colour spaces. The frames may be the same memory when
/// rows and pixels of both are the same size.
class InterleavedCopy final : public BandCopy {
 public:
  /// Without a converter only the samples are converted.
  InterleavedCopy(const FrameView& source, const FrameView& destination,
                  std::shared_ptr<const PixelConverter> converter);
  void CopyRows(int first, int last) const override;

 private:
  FrameView source_;
  FrameView destination_;
  ComponentType sourceType_;
  ComponentType destinationType_;
  std::shared_ptr<const PixelConverter> converter_;
};

}  // namespace RefHost
