#!/usr/bin/env bash
# The speed table: each figure of the host and the library beside the reference it is held to, with
# the aim, measured in one run on the benchmark photograph (6000 x 4000). With BENCH_BASELINE set to
# another build folder (an earlier version built the same way), its figures are measured in the same
# run and printed beside, with the ratio after / before.
#
#   process figures   hyperfine -N (no shell), warm cache, the median of ROUNDS runs
#   in-process work   the Google Benchmark programs of the build (bench_picfix, bench_editing,
#                     bench_store), as the library runs them: the picture fix on every core, the
#                     rest on one thread. The picture fix twice: in a loop whose new picture takes
#                     the block the previous round released (held to gm, which fixes its picture in
#                     place and so writes no fresh pages either), and as the first fix in a process,
#                     whose new picture's pages come fresh from the kernel
#   vips shrink       `vips shrink` of the photograph as an uncompressed .v file by the factor the
#                     1024 box takes, less `vips avg` of the same file (reading every pixel), one thread
#   gm -normalize     `gm convert p.ppm -normalize null:` less `gm convert p.ppm null:`, on every
#                     core as gm runs by default (OpenMP), since the picture fix it is held to does too
#   (both differences are taken between the fastest runs of each command: a difference of medians
#   moves by half again from one run to the next, noise being of the size of the difference)
#
# Usage: compare-speed.sh BUILD_DIR   (ROUNDS per command, default 40)
set -euo pipefail
build=$1
baseline=${BENCH_BASELINE:-}
rounds=${ROUNDS:-40}
here=$(cd "$(dirname "$0")" && pwd)
data=${BENCH_DATA:-/tmp/bench-data}
[ -f "$data/photo24.jpg" ] || BENCH_DATA="$data" bash "$here/../../shared/bench/make-data.sh" >&2
photo="$data/photo24.jpg"
for tool in hyperfine exiv2 jpegtran vips gm; do
  command -v "$tool" > /dev/null || { echo "compare-speed: $tool is not installed" >&2; exit 1; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export VIPS_CONCURRENCY=1 OMP_NUM_THREADS=1 MAGICK_THREAD_LIMIT=1

builds=("$build")
[ -n "$baseline" ] && builds+=("$baseline")

# Median milliseconds of a command, over the rounds.
median_ms() {
  # -i: exiv2 answers 243 after extracting a thumbnail.
  hyperfine -N -i -w 5 -r "$rounds" --export-csv "$work/h.csv" "$1" > /dev/null 2>&1 || true
  awk -F, 'NR == 2 { printf "%.2f", $4 * 1000 }' "$work/h.csv"
}

fastest_ms() {
  hyperfine -N -w 5 -r "$rounds" --export-csv "$work/h.csv" "$1" > /dev/null 2>&1 || true
  awk -F, 'NR == 2 { printf "%.2f", $7 * 1000 }' "$work/h.csv"
}

# A Google Benchmark figure: the column (a counter, or "real_time" in the benchmark's unit) of the
# first row whose name matches `row`, divided by `divisor`, from a run of the benchmarks matching
# `run` (which may include others the row depends on, such as a store's insert before its reopen).
gbench() {
  local program=$1 run=$2 row=$3 column=$4 divisor=$5
  "$program" --benchmark_filter="$run" --benchmark_format=csv 2> /dev/null |
    awk -F, -v row="$row" -v want="$column" -v divisor="$divisor" '
      $1 == "name" { for (i = 1; i <= NF; ++i) { name = $i; gsub(/"/, "", name); col[name] = i }; next }
      index($1, row) && !done { v = $col[want]; gsub(/"/, "", v); printf "%.2f", v / divisor; done = 1 }'
}

declare -A ours
for b in "${builds[@]}"; do
  tool="$b/bin/orvanta"
  cp "$photo" "$work/turn.jpg"
  ours[$b,help]=$(median_ms "$tool --help")
  ours[$b,info]=$(median_ms "$tool info $photo")
  ours[$b,thumb]=$(median_ms "$tool thumb $photo $work/t.jpg")
  ours[$b,rotate]=$(median_ms "$tool rotate $work/turn.jpg 90")
  ours[$b,redeye]=$(gbench "$b/bin/bench_picfix" 'BM_RedeyeClickOn24MP/50' 'BM_RedeyeClickOn24MP/50' real_time 1)
  ours[$b,picfix]=$(gbench "$b/bin/bench_picfix" 'BM_PicFix/' 'BM_PicFix/' 'MP/s' 1)
  ours[$b,picfixFresh]=$(gbench "$b/bin/bench_picfix" 'BM_PicFixFreshPicture' 'BM_PicFixFreshPicture' 'MP/s' 1)
  ours[$b,stretch]=$(gbench "$b/bin/bench_editing" 'BM_Downsize/2' 'BM_Downsize/2' 'MP/s' 1)
  ours[$b,store]=$(gbench "$b/bin/bench_store" 'OrvantaInsert/1024|OrvantaReopenAndScan/1024' \
                   'OrvantaReopenAndScan/1024' 'records/s' 1e6)
done

# The references.
cp "$photo" "$work/source.jpg"
exivVersion=$(median_ms "exiv2 --version")
exivThumb=$(median_ms "exiv2 -f -et -l $work $work/source.jpg")
jpegtranTurn=$(median_ms "jpegtran -rotate 90 -trim -copy all -outfile $work/j.jpg $photo")
gm convert "$photo" "$work/p.ppm"
vips copy "$work/p.ppm" "$work/p.v"
shrinkMs=$(fastest_ms "vips shrink $work/p.v $work/s.v 5.859375 5.859375")
readMs=$(fastest_ms "vips avg $work/p.v")
vipsRate=$(awk -v a="$shrinkMs" -v b="$readMs" 'BEGIN { printf "%.1f", 24 / ((a - b) / 1000) }')
# gm's rate is the difference of two runs that both read the picture: written to null: and read from
# memory, neither spends time on a disk, whose stalls would otherwise swamp the difference.
pixels=$(mktemp -d -p /dev/shm 2> /dev/null || mktemp -d)
trap 'rm -rf "$work" "$pixels"' EXIT
cp "$work/p.ppm" "$pixels/p.ppm"
allCores="env -u OMP_NUM_THREADS -u MAGICK_THREAD_LIMIT"
normalizeMs=$(fastest_ms "$allCores gm convert $pixels/p.ppm -normalize null:")
plainMs=$(fastest_ms "$allCores gm convert $pixels/p.ppm null:")
gmRate=$(awk -v a="$normalizeMs" -v b="$plainMs" 'BEGIN { printf "%.1f", 24 / ((a - b) / 1000) }')
lmdb=$(gbench "$build/bin/bench_store" 'LmdbInsert|LmdbReopenAndScan' 'LmdbReopenAndScan' 'records/s' 1e6)

# One row: the work, our figure (and the baseline's), the reference, the ratio ours / reference
# (or the reverse for rates, where more is better), the aim.
row() {
  local label=$1 key=$2 unit=$3 reference=$4 referenceName=$5 kind=$6 aim=$7
  local value=${ours[$build,$key]} before="" change="" ratio=""
  if [ -n "$baseline" ]; then
    before=${ours[$baseline,$key]}
    # A baseline older than a figure has none to compare.
    if [ -n "$before" ]; then
      change=$(awk -v a="$value" -v b="$before" 'BEGIN { printf "%.2f", a / b }')
    fi
  fi
  if [ -n "$reference" ]; then
    ratio=$(awk -v a="$value" -v b="$reference" 'BEGIN { printf "%.2f", a / b }')
  fi
  printf "| %-44s | %9s | %9s %-4s | %6s | %-32s | %6s | %-20s |\n" "$label" "$before" "$value" "$unit" "$change" \
    "${reference:+$reference $unit $referenceName}" "$ratio" "$aim"
}

echo "photo24.jpg (6000x4000), $rounds runs per command; $(nproc --all) cores, load $(cut -d' ' -f1-3 /proc/loadavg)"
printf "| %-44s | %9s | %14s | %6s | %-32s | %6s | %-20s |\n" "work" "before" "after" "after/before" "reference" "ratio" "aim"
echo "|---|---:|---:|---:|---|---:|---|"
row "orvanta --help (process start alone)" help ms "$exivVersion" "exiv2 --version" time "at most 1.5 ms"
row "thumb from the embedded EXIF thumbnail" thumb ms "$exivThumb" "exiv2 -et" time "ratio at most 1.0"
row "info of one JPEG" info ms "" "" time "at most 2 ms"
row "rotate 90 in place (lossless)" rotate ms "$jpegtranTurn" "jpegtran to a new file" time "ratio at most 1.0"
row "red-eye click, radius 50, 24 MP" redeye ms "" "" time "at most 5 ms"
row "downsize method 2 into a 1024 box" stretch MP/s "$vipsRate" "vips shrink" rate "ratio at least 1.2"
row "picture fix" picfix MP/s "$gmRate" "gm -normalize" rate "ratio at least 1.5"
row "picture fix, first in a process (fresh pages)" picfixFresh MP/s "" "" rate ""
row "store reopen + read all, 1024-byte blocks" store M/s "$lmdb" "LMDB" rate "ratio at least 0.7"
echo "load at the end: $(cut -d' ' -f1-3 /proc/loadavg)"
