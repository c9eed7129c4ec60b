#include "refhost/chromant/rows/ConvertRows.h"

#include "refhost/chromant/rows/QuickTables.h"

namespace RefHost {

RowFunctions RowFunctionsBaseline();
#if defined(__x86_64__)
RowFunctions RowFunctionsAvx2();
RowFunctions RowFunctionsAvx512();
#endif

namespace {

bool HasRowForm(int transfer) {
  switch (transfer) {
    case 1:
    case 4:
    case 5:
    case 8:
    case 13:
    case 16:
      return true;
    default:
      return false;
  }
}

}  // namespace

RowFunctions RowFunctionsOf(InstructionSet set) {
#if defined(__x86_64__)
  if (set == InstructionSet::Avx512) return RowFunctionsAvx512();
  if (set == InstructionSet::Avx2) return RowFunctionsAvx2();
#endif
  static_cast<void>(set);
  return RowFunctionsBaseline();
}

bool ConvertRows(InstructionSet set, const ConversionParams& params, float* red, float* green,
                 float* blue, std::size_t count) {
  if (!HasRowForm(params.source.transfer) || !HasRowForm(params.destination.transfer)) return false;
  RowFunctionsOf(set).convert(params, GetQuickTables(), red, green, blue, count);
  return true;
}

}  // namespace RefHost
