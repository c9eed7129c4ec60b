#include "refhost/chromant/rows/ConvertRows.h"

#include "refhost/chromant/rows/QuickTables.h"

namespace CHR {

using ConvertRunFunction = void(const ConversionParams&, const QuickTables&, float*, float*, float*,
                                std::size_t);
ConvertRunFunction ConvertRunBaseline;
#if defined(__x86_64__)
ConvertRunFunction ConvertRunAvx2;
ConvertRunFunction ConvertRunAvx512;
#endif

namespace {

ConvertRunFunction* RunOf(InstructionSet set) {
#if defined(__x86_64__)
  if (set == InstructionSet::Avx512) return ConvertRunAvx512;
  if (set == InstructionSet::Avx2) return ConvertRunAvx2;
#endif
  static_cast<void>(set);
  return ConvertRunBaseline;
}

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

bool CanRun(InstructionSet set) {
#if defined(__x86_64__)
  switch (set) {
    case InstructionSet::Avx512:
      return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
             __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vl") != 0;
    case InstructionSet::Avx2:
      return __builtin_cpu_supports("avx2") != 0;
    case InstructionSet::Baseline:
      return true;
  }
#endif
  return set == InstructionSet::Baseline;
}

InstructionSet BestInstructionSet() {
  static const InstructionSet kBest = CanRun(InstructionSet::Avx512) ? InstructionSet::Avx512
                                      : CanRun(InstructionSet::Avx2) ? InstructionSet::Avx2
                                                                     : InstructionSet::Baseline;
  return kBest;
}

bool ConvertRows(InstructionSet set, const ConversionParams& params, float* red, float* green,
                 float* blue, std::size_t count) {
  if (!HasRowForm(params.source.transfer) || !HasRowForm(params.destination.transfer)) return false;
  RunOf(set)(params, GetQuickTables(), red, green, blue, count);
  return true;
}

}  // namespace CHR
