#include "refhost/chromant/rows/ConvertRun.h"
#include "refhost/chromant/rows/PlaneRows.h"
#include "refhost/chromant/rows/RowFunctions.h"

namespace RefHost {

RowFunctions RowFunctionsBaseline() { return {ConvertRun, SplitRun, JoinRun, BoundRun}; }

}  // namespace RefHost
