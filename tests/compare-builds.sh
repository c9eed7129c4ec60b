#!/usr/bin/env bash
# Runs the commands of two builds of the command line on the same inputs and compares what they
# write, print and end with. For changes that are to change nothing.
#
#   tests/compare-builds.sh OLD/bin/quillon NEW/bin/quillon [PICTURE_OR_CLIP...]
#
# Inputs are made by OLD; those that are named come besides. Ends with 1 where anything differs.
set -euo pipefail

(($# >= 2)) || {
  sed -n '2,7s/^# \{0,1\}//p' "$0" >&2
  exit 2
}
old=$(realpath "$1")
new=$(realpath "$2")
shift 2
named=()
for file in "$@"; do named+=("$(realpath "$file")"); done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
inputs=$work/inputs
mkdir "$inputs" "$work/old" "$work/new"
runs=0
differing=0

# run_in FOLDER PROGRAM ARGUMENT...: output, messages and exit code beside what is written.
run_in() {
  local folder=$1 code=0
  shift
  (cd "$folder" && "$@" >out.txt 2>err.txt) || code=$?
  echo "$code" >"$folder/code.txt"
  # How fast it was is no result.
  sed -i -E 's/[0-9.e+-]+ frames a second/N frames a second/' "$folder/out.txt"
}

# same ARGUMENT...: both builds, each in an empty folder.
same() {
  rm -rf "$work/old" "$work/new"
  mkdir "$work/old" "$work/new"
  run_in "$work/old" "$old" "$@"
  run_in "$work/new" "$new" "$@"
  runs=$((runs + 1))
  diff -r "$work/old" "$work/new" >"$work/difference" && return
  differing=$((differing + 1))
  printf 'differs: quillon %s\n' "$*"
  head -5 "$work/difference"
}

make() { "$old" chart "$@" >/dev/null; }
for size in 64x64 333x77 1x1; do
  for format in exr png avif; do make --size $size "$inputs/$size.$format"; done
done
make --video --frames 6 --size 128x72 "$inputs/hdr10.mp4"
make --video --frames 6 --size 128x72 "$inputs/hdr10.mkv"
make --video --hlg --frames 6 --size 128x72 "$inputs/hlg.mov"
printf 'no picture' >"$inputs/text.png"
: >"$inputs/empty.exr"
head -c 900 "$inputs/333x77.png" >"$inputs/cut.png"

for picture in "$inputs"/*.{exr,png,avif}; do
  same map --explain "$picture" out.png
  same map --to bt2100-pq --target-peak 600 --peak 4000 "$picture" out.avif
  same map --to p3-d65 --algorithm car --knee 0.3 --gamut reinhard "$picture" out.exr
  same map --algorithm bt2390-rgb --peak measure --gain 1.5 "$picture" out.png
done
for algorithm in auto bt2390-maxrgb bt2390-rgb bt2446a hue car none; do
  for picture in "$inputs"/64x64.{exr,png}; do
    same map --explain --algorithm $algorithm "$picture" out.exr
    same map --device gpu --algorithm $algorithm --gamut desaturate "$picture" out.exr
  done
  same lut --size 17 --algorithm $algorithm out.cube
done
for clip in "$inputs"/*.{mp4,mkv,mov} "${named[@]}"; do
  same inspect "$clip"
  same inspect --measure --json - "$clip"
done
for clip in "$inputs"/*.{mp4,mkv,mov}; do
  same map "$clip" out.mp4
  same map --peak scenes --explain "$clip" out.mp4
  same map --frames 1-3 --to bt2100-pq --target-peak 400 "$clip" 'f.%03d.png'
  same map --dry-run "$clip" out.mp4
done
for picture in "${named[@]}"; do same map --explain "$picture" out.png; done
same curve --peak 4000 --hue curves.svg curves.csv
same curve --to bt2100-pq --target-peak 600 --algorithm hue curves.png
same lut --explain --from bt2100-hlg --to bt709 out.cube
same compare "$inputs/64x64.png" "$inputs/64x64.avif" view.png
same compare --json - "$inputs/hdr10.mp4" "$inputs/hdr10.mkv"
same chart out.exr --size 100x50
same devices

# What is refused, and how.
for wrong in "--knee 0.3" "--device cuda:99" "--device opencl:99" "--device nothing" "--to nonsense" \
    "--from-cicp 9/16" "--target-peak 500" "--algorithm none --gain 2" "--peak scenes" \
    "--algorithm bt2446a --knee 0.5" "--to-cicp 2/2/2" "--peak 1e7" "--explain --quiet" \
    "--from-cicp 2/2/2"; do
  # shellcheck disable=SC2086 # several options
  same map $wrong "$inputs/64x64.exr" out.png
done
same map --peak metadata "$inputs/64x64.exr" out.png
same lut --from srgb out.cube
same curve --algorithm none --preserve 0.3 out.svg

printf '%s runs, %s differ\n' "$runs" "$differing"
((differing == 0))
