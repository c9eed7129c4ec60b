#pragma once

#include "base/ResultCodes.h"

namespace unbound {

/// Algorithms 2, 3, 4 and 6 have parameters but no curve yet, and end as unknown ones. With their
/// curves, what they end with is named here and nowhere else.

/// Parameters complete and sound. With the curves: kSuccess.
inline constexpr int kSoundParameters = Quillon::kNotSupported;
/// Parameters degenerate, or fewer than the curve reads. With the curves: kDegenerateParameters.
inline constexpr int kUnfitParameters = Quillon::kNotSupported;

}  // namespace unbound
