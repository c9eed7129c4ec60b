#pragma once

#include <cstddef>

#include "refhost/chromant/ConversionParams.h"
#include "refhost/chromant/rows/QuickTables.h"

namespace RefHost {

/// What is done to rows of pixels by one instruction set.
struct RowFunctions {
  void (*convert)(const ConversionParams& params, const QuickTables& tables, float* red,
                  float* green, float* blue, std::size_t count);
  void (*split)(const float* pixels, std::size_t count, float* red, float* green, float* blue);
  void (*join)(const float* red, const float* green, const float* blue, std::size_t count,
               float* pixels);
  void (*bound)(float* samples, std::size_t count, float most);
};

}  // namespace RefHost
