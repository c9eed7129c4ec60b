#pragma once

#include <functional>

namespace RefHost {

/// Runs `work` over the rows from 0 up to `rows` in bands of `bandRows`, the last with what
/// remains, on up to 16 threads of the CPU-bound executor. Where a band begins does not depend on
/// threads. Returns when all bands are done; raises the first exception of one.
void RunInBands(int rows, int bandRows, const std::function<void(int first, int last)>& work);

}  // namespace RefHost
