#pragma once

#include <string>

#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/compare/CompareOptions.h"

namespace Quillon::Cli {

/// Throws CommandError or StillError where what was asked for cannot be written.
void CheckCompareTargets(const CompareOptions& options);

/// Writes the view of two compared pictures, where one was asked for. Throws CommandError or
/// StillError.
void WriteCompareView(const CompareOptions& options, const Comparison& comparison,
                      const PX::VideoFrameRef& a, const PX::VideoFrameRef& b);

/// Writes the figures as JSON, where a file was asked for. Throws StillError.
void WriteCompareJson(const CompareOptions& options, const std::string& json);

}  // namespace Quillon::Cli
