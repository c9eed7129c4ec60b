#!/usr/bin/env bash
# Checks and measures the kernels on the GPUs of a machine that has nothing but drivers.
#
#   bench/gpu.sh pack FOLDER   builds, and gathers programs and the libraries they need, up to 40 MB
#   FOLDER/gpu.sh run [OUT]    on the machine with the GPU: the tests on every device, those of
#                              kernels under compute-sanitizer where it is there, and times of
#                              kernels and whole calls on every GPU. OUT gets up to five files:
#                              00-summary.txt says what passed and what was measured
set -euo pipefail

tests=(kernels_test kestrel_gpu_test ironlane_test map_on_devices_test)
programs=("${tests[@]}" quillon-gpu-bench)

pack() {
  local folder=$1 program library size
  cmake --preset release
  ninja -C build/release "${programs[@]}"
  mkdir -p "$folder/lib"
  cp "${BASH_SOURCE[0]}" "$folder/gpu.sh"
  for program in "${programs[@]}"; do
    cp "build/release/bin/$program" "$folder/"
    # All but what belongs to the C library, which has to be the machine's own.
    ldd "build/release/bin/$program" | awk '$3 ~ /^\// { print $3 }' |
      grep -Ev '/(libc|libm|libdl|libpthread|librt|ld-linux[^/]*)\.so' |
      while read -r library; do cp -nL "$library" "$folder/lib/"; done
  done
  strip --strip-debug "$folder"/lib/* "${programs[@]/#/$folder/}"
  size=$(du -sm "$folder" | cut -f1)
  echo "$folder: $size MB"
  if ((size > 40)); then
    echo "that is more than 40 MB" >&2
    return 1
  fi
}

# Runs a step, its output at the end of a file of OUT, and goes on; the summary has what became of
# it.
step() {
  local file=$1 name=$2 result=passed
  shift 2
  echo "== $name" | tee -a "$out/$file"
  "$@" >>"$out/$file" 2>&1 || result="FAILED, see $file"
  printf '%-24s %s\n' "$name" "$result" | tee -a "$summary"
}

run() {
  mkdir -p "${1:-.}"
  out=$(cd "${1:-.}" && pwd)
  summary=$out/00-summary.txt
  cd "$(dirname "${BASH_SOURCE[0]}")"
  rm -f "$out"/{00-summary.txt,tests.log,sanitizer.log,bench.txt,bench.json}
  export LD_LIBRARY_PATH=$PWD/lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
  export XDG_CACHE_HOME=$PWD/cache
  # The loader of the machine knows its drivers; the one taken along is for machines without.
  if ldconfig -p | grep -q 'libOpenCL\.so\.1'; then rm -f lib/libOpenCL.so.1; fi

  { uname -mrs; date -u; nvidia-smi -L 2>/dev/null || true; } >"$summary"
  local program tool
  for program in "${tests[@]}"; do
    step tests.log "$program" "./$program"
  done
  if command -v compute-sanitizer >/dev/null; then
    for tool in memcheck racecheck initcheck synccheck; do
      step sanitizer.log "sanitizer $tool" compute-sanitizer --tool "$tool" --error-exitcode 9 \
        ./kernels_test --gtest_filter='*cuda*-*WholeFrame*'
    done
  else
    echo "compute-sanitizer is not there: nothing was run under it" | tee -a "$summary"
  fi
  step bench.txt "times" ./quillon-gpu-bench gpus "$out/bench.json"
  cat "$out/bench.txt" >>"$summary"
  grep -E '^\[  (PASSED|SKIPPED|FAILED)' "$out/tests.log" | sort | uniq -c >>"$summary" || true
  ! grep -q 'FAILED' "$summary"
}

case ${1:-} in
  pack) pack "${2:?the folder to gather into}" ;;
  run) run "${2:-}" ;;
  *)
    sed -n '2,9p' "${BASH_SOURCE[0]}" >&2
    exit 2
    ;;
esac
