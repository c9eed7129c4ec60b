#pragma once

#include <string_view>
#include <vector>

#include "tools/quillon/plot/PlotScene.h"

namespace Quillon::Cli {

/// How an algorithm's line looks. The colours are told apart by colour-blind readers (Okabe and
/// Ito); lines that often lie on another one are dashed, so that both are seen.
struct CurveStyle {
  Color color;
  std::vector<double> dashes;
};

CurveStyle StyleOf(std::string_view algorithm);

inline constexpr Color kInk{0.13, 0.13, 0.13};
inline constexpr Color kQuietInk{0.40, 0.40, 0.40};
inline constexpr Color kGrid{0.85, 0.85, 0.85};
inline constexpr Color kFaintGrid{0.94, 0.94, 0.94};
inline constexpr Color kIdentity{0.72, 0.72, 0.72};

}  // namespace Quillon::Cli
