#include "refhost/orvcore/Bands.h"

#include <algorithm>
#include <memory>

#include "host/orvcore/Threads.h"

using orvcore::threads::CreateCPUBoundExecutor;
using orvcore::threads::CreateSubExecutor;

namespace RefHost {

void RunInBands(int rows, int bandRows, const std::function<void(int first, int last)>& work) {
  constexpr int kMostAtOnce = 16;
  if (rows <= 0) return;
  if (rows <= bandRows) return work(0, rows);
  const int bands = (rows - 1) / bandRows + 1;
  const auto executor = CreateSubExecutor(CreateCPUBoundExecutor(), std::min(bands, kMostAtOnce));
  for (int band = 0; band < bands; ++band) {
    const int first = band * bandRows;
    const int last = first + std::min(bandRows, rows - first);
    executor->Queue([&work, first, last] { work(first, last); }, 0);
  }
  executor->WaitForAll();
}

}  // namespace RefHost
