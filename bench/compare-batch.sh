#!/usr/bin/env bash
# orvanta batch-convert of the 100 benchmark photographs (12 MP each) into a 160 box, in files per
# second, beside GraphicsMagick's `gm mogrify -size 320x320 -thumbnail 160x160` on the same files.
# Both run on one core, then orvanta with one task per core. The machine is noisy, so the tools
# take turns, several rounds, and the best round of each is reported with the ratio of wall times;
# files per CPU-second shows the work itself when other loads share the cores.
# Usage: compare-batch.sh BUILD_DIR
set -euo pipefail
build=$1
here=$(cd "$(dirname "$0")" && pwd)
orvanta="$build/bin/orvanta"
rounds=${ROUNDS:-3}
data=${BENCH_DATA:-/tmp/bench-data}
[ -f "$data/batch/b099.jpg" ] || BENCH_DATA="$data" bash "$here/../../shared/bench/make-data.sh" >&2
command -v gm > /dev/null || { echo "compare-batch: gm (GraphicsMagick) is not installed" >&2; exit 1; }
cores=$(nproc)
files=$(ls "$data"/batch/*.jpg | wc -l)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# run NAME COMMAND...: runs once and appends "NAME WALL CPU" (seconds) to the timings.
run() {
  local name=$1
  shift
  /usr/bin/time -f "$name %e %U %S" -a -o "$work/timings" "$@" > /dev/null
}

for round in $(seq "$rounds"); do
  rm -rf "$work/one" "$work/all" "$work/gm"
  mkdir -p "$work/gm"
  run orvanta-1 taskset -c 0 "$orvanta" batch-convert "$data/batch" "$work/one" --max 160x160 --jobs 1
  # mogrify puts each output under the directory by the name it was given, so give bare names.
  (cd "$data/batch" && run gm-1 env OMP_NUM_THREADS=1 taskset -c 0 gm mogrify -output-directory "$work/gm" \
     -size 320x320 -thumbnail 160x160 ./*.jpg)
  run orvanta-$cores "$orvanta" batch-convert "$data/batch" "$work/all" --max 160x160 --jobs "$cores"
done

# Every output must be there and inside the box.
for out in one all gm; do
  [ "$(ls "$work/$out" | wc -l)" -eq "$files" ] || { echo "compare-batch: $out has too few files" >&2; exit 1; }
done
biggest=$(gm identify -format '%w\n%h\n' "$work"/one/*.jpg | sort -n | tail -n 1)
[ "$biggest" -le 160 ] || { echo "compare-batch: an output is larger than 160 ($biggest)" >&2; exit 1; }

# The best round of each: files per second of wall time, and of CPU time (user + system).
awk -v files="$files" -v cores="$cores" '
  { wall = $2; cpu = $3 + $4
    if (!($1 in bestWall) || wall < bestWall[$1]) bestWall[$1] = wall
    if (!($1 in bestCpu) || cpu < bestCpu[$1]) bestCpu[$1] = cpu }
  END {
    printf "%-34s %10s %14s %10s\n", "", "files/s", "files/CPU-s", "vs gm"
    printf "%-34s %10.1f %14.1f %10s\n", "gm mogrify -thumbnail, 1 core", files / bestWall["gm-1"], files / bestCpu["gm-1"], "1.00"
    printf "%-34s %10.1f %14.1f %10.2f\n", "orvanta batch-convert, 1 core", files / bestWall["orvanta-1"], \
      files / bestCpu["orvanta-1"], bestWall["gm-1"] / bestWall["orvanta-1"]
    name = "orvanta-" cores
    printf "%-34s %10.1f %14.1f %10.2f\n", "orvanta batch-convert, " cores " tasks", files / bestWall[name], \
      files / bestCpu[name], bestWall["gm-1"] / bestWall[name]
  }' "$work/timings"
