#!/usr/bin/env bash
# Times the orvanta host against the reference tools on the benchmark photographs: the same work,
# the two commands alternately in one run, single-threaded, whole processes with a warm cache.
# Prints each command's median and the ratio orvanta / reference, and the peak memory of the
# 1024-pixel conversion.
# Usage: compare-codecs.sh BUILD_DIR   (ROUNDS per pair, default 15)
set -euo pipefail
build=$1
rounds=${ROUNDS:-15}
here=$(cd "$(dirname "$0")" && pwd)
orvanta="$build/bin/orvanta"
[ -x "$orvanta" ] || { echo "compare-codecs: $orvanta is missing" >&2; exit 1; }
data=${BENCH_DATA:-/tmp/bench-data}
[ -f "$data/photo24.jpg" ] || BENCH_DATA="$data" bash "$here/../../shared/bench/make-data.sh" >&2
photo="$data/photo24.jpg"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# One thread everywhere: the reference tools would otherwise use every core.
export VIPS_CONCURRENCY=1 OMP_NUM_THREADS=1 MAGICK_THREAD_LIMIT=1

have() { command -v "$1" >/dev/null 2>&1; }

# Milliseconds of one run of a command (its output discarded).
time_once() {
  local start end
  start=$(date +%s%N)
  "$@" >/dev/null 2>&1 || true   # exiv2 answers 243 after extracting a thumbnail
  end=$(date +%s%N)
  echo $(( (end - start) / 1000 ))
}

median() { sort -n | awk '{ v[NR] = $1 } END { m = (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2; printf "%.1f", m / 1000 }'; }

# compare LABEL -- ORVANTA COMMAND -- REFERENCE COMMAND
compare() {
  local label=$1; shift; shift
  local ours=() theirs=()
  while [ "$1" != "--" ]; do ours+=("$1"); shift; done; shift
  theirs=("$@")
  "${ours[@]}" >/dev/null 2>&1 || true; "${theirs[@]}" >/dev/null 2>&1 || true   # warm the cache
  : > "$work/a"; : > "$work/b"
  for _ in $(seq "$rounds"); do
    time_once "${ours[@]}" >> "$work/a"
    time_once "${theirs[@]}" >> "$work/b"
  done
  local a b
  a=$(median < "$work/a"); b=$(median < "$work/b")
  printf "%-44s orvanta %8s ms   %-26s %8s ms   ratio %s\n" "$label" "$a" "$(basename "${theirs[0]}")" "$b" \
    "$(awk -v a="$a" -v b="$b" 'BEGIN { printf "%.2f", a / b }')"
}

peak_kb() { /usr/bin/time -f "%M" "$@" 2>&1 >/dev/null | tail -n 1; }

echo "photo24.jpg, $(identify -format '%wx%h' "$photo" 2>/dev/null || echo 6000x4000), $rounds rounds per pair"

have gm && compare "convert --max 160x160" -- "$orvanta" convert "$photo" "$work/o160.jpg" --max 160x160 \
  -- gm convert -size 320x320 "$photo" -thumbnail 160x160 "$work/g160.jpg"
have vipsthumbnail && compare "convert --max 160x160" -- "$orvanta" convert "$photo" "$work/o160.jpg" --max 160x160 \
  -- vipsthumbnail "$photo" -s 160x160 -o "$work/v160.jpg"
have djpeg && compare "convert --max 160x160 vs a decode alone" -- "$orvanta" convert "$photo" "$work/o160.jpg" --max 160x160 \
  -- djpeg -scale 1/8 -outfile "$work/d8.ppm" "$photo"
have vips && compare "convert --max 1024x1024, quality 85" -- "$orvanta" convert "$photo" "$work/o1024.jpg" --max 1024x1024 \
  -- vips thumbnail "$photo" "$work/v1024.jpg[Q=85]" 1024
cp "$photo" "$work/turn.jpg"
have jpegtran && compare "rotate 90 (lossless)" -- "$orvanta" rotate "$work/turn.jpg" 90 \
  -- jpegtran -rotate 90 -trim -copy all -outfile "$work/j90.jpg" "$photo"
cp "$photo" "$work/thumbsource.jpg"
have exiv2 && compare "thumb from the embedded EXIF thumbnail" -- "$orvanta" thumb "$photo" "$work/t.jpg" \
  -- exiv2 -f -et -l "$work" "$work/thumbsource.jpg"

if [ -x /usr/bin/time ]; then
  echo "peak memory of convert --max 1024x1024: orvanta $(peak_kb "$orvanta" convert "$photo" "$work/m.jpg" --max 1024x1024) KB," \
       "vips $(peak_kb vips thumbnail "$photo" "$work/m.jpg[Q=85]" 1024) KB"
fi
