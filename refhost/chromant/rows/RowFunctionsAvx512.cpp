#include "refhost/chromant/rows/ConvertRun.h"
#include "refhost/chromant/rows/PlaneRows.h"
#include "refhost/chromant/rows/RowFunctions.h"

namespace RefHost {

RowFunctions RowFunctionsAvx512() { return {ConvertRun, SplitRun, JoinRun, BoundRun}; }

}  // namespace RefHost
