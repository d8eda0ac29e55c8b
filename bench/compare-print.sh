#!/usr/bin/env bash
# orvanta print --to-pdf of twenty 12 MP photographs, one a page, beside img2pdf on the same files
# (both put each JPEG into the PDF as it is): the best of several rounds, the ratio of wall times
# (orvanta must stay within 1.5 times img2pdf's), and a check that every page holds its file's own
# bytes. Then a 4 x 5 contact sheet of the twenty at 300 dpi: time and peak memory.
# Usage: compare-print.sh BUILD_DIR
set -euo pipefail
build=$1
here=$(cd "$(dirname "$0")" && pwd)
orvanta="$build/bin/orvanta"
rounds=${ROUNDS:-3}
data=${BENCH_DATA:-/tmp/bench-data}
[ -f "$data/batch/b019.jpg" ] || BENCH_DATA="$data" bash "$here/../../shared/bench/make-data.sh" >&2
command -v img2pdf > /dev/null || { echo "compare-print: img2pdf is not installed" >&2; exit 1; }
command -v pdfimages > /dev/null || { echo "compare-print: pdfimages (poppler-utils) is not installed" >&2; exit 1; }
photos=("$data"/batch/b0[01]?.jpg)
[ "${#photos[@]}" -eq 20 ] || { echo "compare-print: expected 20 photographs, found ${#photos[@]}" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# run NAME COMMAND...: runs once and appends "NAME WALL CPU PEAK_KB" to the timings.
run() {
  local name=$1
  shift
  /usr/bin/time -f "$name %e %U %S %M" -a -o "$work/timings" "$@" > /dev/null
}

for round in $(seq "$rounds"); do
  rm -f "$work"/*.pdf
  run orvanta "$orvanta" print --to-pdf "$work/orvanta.pdf" "${photos[@]}"
  run img2pdf img2pdf -o "$work/img2pdf.pdf" "${photos[@]}"
  run sheet "$orvanta" print --to-pdf "$work/sheet.pdf" --layout 4x5 --max-dpi 300 "${photos[@]}"
done

# Every page of orvanta's document holds its photograph byte for byte.
mkdir "$work/blocks"
pdfimages -j "$work/orvanta.pdf" "$work/blocks/p"
i=0
for photo in "${photos[@]}"; do
  block=$(printf '%s/blocks/p-%03d.jpg' "$work" "$i")
  cmp -s "$photo" "$block" || { echo "compare-print: page $((i + 1)) does not hold $photo as it is" >&2; exit 1; }
  i=$((i + 1))
done
echo "all 20 pages hold their photograph's own bytes"

awk '
  { wall = $2; cpu = $3 + $4
    if (!($1 in best) || wall < best[$1]) { best[$1] = wall; bestCpu[$1] = cpu; peak[$1] = $5 } }
  END {
    printf "%-44s %8s %8s %10s %8s\n", "", "wall s", "CPU s", "peak MiB", "vs img2pdf"
    printf "%-44s %8.2f %8.2f %10.1f %8s\n", "img2pdf, 20 x 12 MP one a page", best["img2pdf"], bestCpu["img2pdf"], peak["img2pdf"] / 1024, "1.00"
    ratio = best["orvanta"] / best["img2pdf"]
    printf "%-44s %8.2f %8.2f %10.1f %8.2f\n", "orvanta print --to-pdf, 20 x 12 MP one a page", best["orvanta"], bestCpu["orvanta"], peak["orvanta"] / 1024, ratio
    printf "%-44s %8.2f %8.2f %10.1f\n", "orvanta print --to-pdf --layout 4x5, 300 dpi", best["sheet"], bestCpu["sheet"], peak["sheet"] / 1024
    if (ratio > 1.5) { print "compare-print: orvanta took more than 1.5 times img2pdf" > "/dev/stderr"; exit 1 }
  }' "$work/timings"
