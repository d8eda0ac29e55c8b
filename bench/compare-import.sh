#!/usr/bin/env bash
# orvanta catalog import of the 100 benchmark photographs (12 MP each), their thumbnails included, in
# files per second, beside GraphicsMagick's `gm mogrify -thumbnail 160x160` on the same files (its
# OpenMP threads on every core), the same with the JPEG decoder told the size wanted (`-size
# 320x320`, two processes, one per core), and `orvanta batch-convert --max 160x160 --jobs 2` to the
# same box. One run of each, the files read once before so that all come from the page cache. The
# import is timed twice: with its thumbnails taken from the files' EXIF previews where they have them
# (the default), and decoded from the pictures themselves (--no-embedded), the like of what the others
# do. Ratios are of files per second. Usage: compare-import.sh BUILD_DIR
set -euo pipefail
build=$1
here=$(cd "$(dirname "$0")" && pwd)
orvanta="$build/bin/orvanta"
data=${BENCH_DATA:-/tmp/bench-data}
[ -f "$data/batch/b099.jpg" ] || BENCH_DATA="$data" bash "$here/../../shared/bench/make-data.sh" >&2
command -v gm > /dev/null || { echo "compare-import: gm (GraphicsMagick) is not installed" >&2; exit 1; }
files=$(ls "$data"/batch/*.jpg | wc -l)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat "$data"/batch/*.jpg > /dev/null

# run NAME COMMAND...: runs once and appends "NAME WALL" (seconds) to the timings.
run() {
  local name=$1
  shift
  /usr/bin/time -f "$name %e" -a -o "$work/timings" "$@" > "$work/$name.out"
}

run import "$orvanta" catalog import --catalog "$work/embedded.db" --jobs 2 "$data/batch"
run import-decoded "$orvanta" catalog import --catalog "$work/decoded.db" --jobs 2 --no-embedded "$data/batch"
mkdir -p "$work/gm" "$work/gm-sized"
(cd "$data/batch" && run gm gm mogrify -output-directory "$work/gm" -thumbnail 160x160 ./*.jpg)
(cd "$data/batch" && ls ./*.jpg | run gm-sized env OMP_NUM_THREADS=1 xargs -P 2 -n $(( (files + 1) / 2 )) \
   gm mogrify -output-directory "$work/gm-sized" -size 320x320 -thumbnail 160x160)
run batch-convert-2 "$orvanta" batch-convert "$data/batch" "$work/converted" --max 160x160 --jobs 2

# Every import catalogued every photograph and made every thumbnail; the others wrote every file.
for out in import import-decoded; do
  grep -q "^import: $files added, .*thumbnails: $files made, 0 kept, 0 failed" "$work/$out.out" ||
    { echo "compare-import: $out did not import everything:" >&2; tail -n 1 "$work/$out.out" >&2; exit 1; }
done
for out in gm gm-sized converted; do
  [ "$(ls "$work/$out" | wc -l)" -eq "$files" ] || { echo "compare-import: $out has too few files" >&2; exit 1; }
done

awk -v files="$files" '
  { wall[$1] = $2 }
  function row(label, name) {
    printf "%-50s %10.1f %8.2f %16.2f\n", label, files / wall[name], wall["gm"] / wall[name], \
      wall["batch-convert-2"] / wall[name]
  }
  END {
    printf "%-50s %10s %8s %16s\n", "", "files/s", "vs gm", "vs batch-convert"
    row("gm mogrify -thumbnail 160x160, OpenMP", "gm")
    row("gm mogrify -size 320x320 -thumbnail, 2 processes", "gm-sized")
    row("orvanta batch-convert --max 160x160 --jobs 2", "batch-convert-2")
    row("orvanta catalog import --no-embedded, 2 tasks", "import-decoded")
    row("orvanta catalog import (EXIF previews), 2 tasks", "import")
  }' "$work/timings"
