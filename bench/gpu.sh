#!/usr/bin/env bash
# Checks and measures the kernels on the GPUs of a machine that has nothing but drivers.
#
#   bench/gpu.sh pack FOLDER   builds, and gathers programs and the libraries they need
#   FOLDER/gpu.sh run [OUT]    on the machine with the GPU: the parity tests on every device, the
#                              kernel tests under compute-sanitizer where it is there, and every
#                              kernel against a copy within the device's memory; logs go to OUT
set -euo pipefail

programs=(kernels_test kestrel_gpu_test ironlane_test map_on_devices_test quillon quillon-gpu-bench)

pack() {
  local folder=$1 program library
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
  du -sh "$folder"
}

# Runs a step and goes on; what failed is told at the end.
failed=()
step() {
  local name=$1
  shift
  echo "== $name: $*"
  "$@" >"$out/$name.log" 2>&1 || failed+=("$name")
  tail -n 12 "$out/$name.log"
}

run() {
  mkdir -p "${1:-.}"
  out=$(cd "${1:-.}" && pwd)
  cd "$(dirname "${BASH_SOURCE[0]}")"
  export LD_LIBRARY_PATH=$PWD/lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}
  export XDG_CACHE_HOME=$PWD/cache
  # The loader of the machine knows its drivers; the one taken along is for machines without.
  if ldconfig -p | grep -q 'libOpenCL\.so\.1'; then rm -f lib/libOpenCL.so.1; fi

  step devices ./quillon devices
  local program tool
  for program in kernels_test kestrel_gpu_test ironlane_test map_on_devices_test; do
    step "$program" "./$program"
  done
  if command -v compute-sanitizer >/dev/null; then
    for tool in memcheck racecheck initcheck synccheck; do
      step "sanitizer-$tool" compute-sanitizer --tool "$tool" --error-exitcode 9 \
        ./kernels_test --gtest_filter='*cuda*-*WholeFrame*'
    done
  else
    echo "compute-sanitizer is not there: the kernels were not run under it"
  fi
  local device
  for device in $(./quillon devices | awk '$1 ~ /^(cuda|opencl):/ { print $1 }'); do
    step "bench-${device/:/-}" ./quillon-gpu-bench "$device" "$out/${device/:/-}.json"
  done
  if ((${#failed[@]})); then
    echo "failed: ${failed[*]}"
    return 1
  fi
}

case ${1:-} in
  pack) pack "${2:?the folder to gather into}" ;;
  run) run "${2:-}" ;;
  *)
    sed -n '2,8p' "${BASH_SOURCE[0]}" >&2
    exit 2
    ;;
esac
