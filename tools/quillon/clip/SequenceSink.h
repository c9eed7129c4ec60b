#pragma once

#include "tools/quillon/clip/PictureSink.h"
#include "tools/quillon/clip/SequenceName.h"
#include "tools/quillon/io/WriteStill.h"

namespace Quillon::Cli {

/// Writes stills by the numbers of their pictures, each as a whole or not at all.
class SequenceSink : public PictureSink {
 public:
  /// `still` is what all stills have in common: settings, depth, whether to replace files.
  SequenceSink(SequenceName name, int width, int height,
               const orvmediatypes::color::ColorSpace& colorSpace, StillOutput still, bool resume);

  MappedPicture NewPicture() override;
  bool Has(std::int64_t number) const override;
  void Write(MappedPicture picture, const ClipPicture& source) override;
  void Finish() override {}
  std::string Abandon(bool atOnce) override;

 private:
  SequenceName name_;
  int width_;
  int height_;
  orvmediatypes::color::ColorSpace colorSpace_;
  StillOutput still_;
  bool resume_;
  std::int64_t written_ = 0;
};

}  // namespace Quillon::Cli
