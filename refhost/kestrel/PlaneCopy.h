#pragma once

#include "refhost/kestrel/BandCopy.h"
#include "refhost/kestrel/FrameView.h"

namespace RefHost {

/// Copies samples as they are. Both frames have one format and size, and share no memory.
class PlaneCopy final : public BandCopy {
 public:
  PlaneCopy(const FrameView& source, const FrameView& destination)
      : source_(source), destination_(destination) {}
  void CopyRows(int first, int last) const override;

 private:
  FrameView source_;
  FrameView destination_;
};

}  // namespace RefHost
