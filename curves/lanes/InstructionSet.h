#pragma once

// The instruction sets that rows of pixels are built for. For C++ alone, like all of this folder.

namespace Quillon {

/// The later the wider.
enum class InstructionSet { Baseline, Avx2, Avx512 };

/// Whether this machine can run them. The baseline always runs.
inline bool CanRun(InstructionSet set) {
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

/// The widest that this machine can run.
inline InstructionSet BestInstructionSet() {
  static const InstructionSet kBest = CanRun(InstructionSet::Avx512) ? InstructionSet::Avx512
                                      : CanRun(InstructionSet::Avx2) ? InstructionSet::Avx2
                                                                     : InstructionSet::Baseline;
  return kBest;
}

}  // namespace Quillon
