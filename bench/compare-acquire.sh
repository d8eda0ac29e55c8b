#!/usr/bin/env bash
# Acquisition beside the reference tools, on the same devices in the same run:
#  - 200 photographs from libgphoto2's directory camera: orvanta import (look, copy, catalogue) against
#    gphoto2 --get-all-files; orvanta must copy at least 0.9 times as many photographs a second.
#  - one 300-dpi colour page (200 x 200 mm) of SANE's test scanner: orvanta import of the scanner
#    (scan in the helper process, JPEG, copy, catalogue) against scanimage writing the same page as
#    JPEG; orvanta must be at least 0.9 times as fast.
# The best of several rounds; the copies are checked byte for byte against gphoto2's. orvanta's first
# round loads every libgphoto2 driver and remembers the camera's in the run's own cache folder; the
# later ones load that one driver, as a user's second import from the same camera does.
# Usage: compare-acquire.sh BUILD_DIR
set -euo pipefail
build=$1
orvanta="$build/bin/orvanta"
rounds=${ROUNDS:-5}
here=$(cd "$(dirname "$0")" && pwd)
testdata=$here/../../shared/testdata
command -v gphoto2 > /dev/null || { echo "compare-acquire: gphoto2 is not installed" >&2; exit 1; }
command -v scanimage > /dev/null || { echo "compare-acquire: scanimage (sane-utils) is not installed" >&2; exit 1; }
[ -d "$testdata/jpeg" ] || { echo "compare-acquire: no test data at $testdata" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work/home  # libgphoto2 keeps its settings there, not in the user's
mkdir -p "$HOME"

# The camera: the test data's photographs in turn, 200 of them in two folders.
mapfile -t sources < <(find "$testdata/jpeg" -name '*.jpg' | sort)
mkdir -p "$work/camera/DCIM/100BENCH" "$work/camera/DCIM/101BENCH"
for i in $(seq 200); do
  folder=$work/camera/DCIM/100BENCH
  (( i % 2 )) || folder=$work/camera/DCIM/101BENCH
  cp "${sources[$(( (i - 1) % ${#sources[@]} ))]}" "$folder/$(printf 'IMG_%04d.JPG' "$i")"
done
camera="Directory Browse@disk:$work/camera"

# SANE: the test backend only.
mkdir -p "$work/sane"
echo test > "$work/sane/dll.conf"
export SANE_CONFIG_DIR=$work/sane
page=(mode=Color resolution=300 "test-picture=Color pattern" br-x=200 br-y=200)

# Wall time from bash's microsecond clock (time's own is in hundredths, too coarse for runs of a
# tenth of a second); CPU time and peak memory from time.
# Each run starts with nothing left to write back, so that no command pays for the files of the one
# before it (200 copied photographs are still being written out when the next command starts).
run() {
  local name=$1
  shift
  sync
  local start=$EPOCHREALTIME
  /usr/bin/time -f "%U %S %M" -o "$work/one" "$@" > /dev/null
  local end=$EPOCHREALTIME
  echo "$name $(awk -v a="$start" -v b="$end" 'BEGIN { printf "%.4f", b - a }') $(cat "$work/one")" >> "$work/timings"
}

for round in $(seq "$rounds"); do
  rm -rf "$work/orvanta" "$work/gphoto2" "$work"/*.db "$work/scans" "$work/scanimage.jpg"
  mkdir -p "$work/gphoto2"
  run orvanta-camera "$orvanta" import "$camera" --to "$work/orvanta" --catalog "$work/camera.db"
  (cd "$work/gphoto2" && run gphoto2 gphoto2 --quiet --camera "Directory Browse" --port "disk:$work/camera" \
    --get-all-files --filename "%f.%C")
  options=()
  for o in "${page[@]}"; do options+=(--scan-option "$o"); done
  run orvanta-scanner "$orvanta" import 'Noname|frontend-tester|test:0' "${options[@]}" --to "$work/scans" \
    --catalog "$work/scans.db"
  run scanimage scanimage -d test:0 --mode Color --resolution 300 --test-picture "Color pattern" -x 200 -y 200 \
    --format=jpeg -o "$work/scanimage.jpg"
done

copies=$(find "$work/orvanta" -type f | wc -l)
[ "$copies" -eq 200 ] || { echo "compare-acquire: orvanta copied $copies photographs, not 200" >&2; exit 1; }
for copy in "$work/orvanta"/*; do
  cmp -s "$copy" "$work/gphoto2/$(basename "$copy")" || { echo "compare-acquire: $copy differs from gphoto2's" >&2; exit 1; }
done
echo "all 200 copies equal gphoto2's"
[ "$(find "$work/scans" -type f | wc -l)" -eq 1 ] || { echo "compare-acquire: no scanned page" >&2; exit 1; }

awk '
  { wall = $2; cpu = $3 + $4
    if (!($1 in best) || wall < best[$1]) { best[$1] = wall; bestCpu[$1] = cpu; peak[$1] = $5 } }
  END {
    printf "%-52s %8s %8s %10s %8s\n", "", "wall s", "CPU s", "peak MiB", "rate vs"
    printf "%-52s %8.3f %8.2f %10.1f %8s\n", "gphoto2 --get-all-files, 200 photographs", best["gphoto2"], bestCpu["gphoto2"], peak["gphoto2"] / 1024, "1.00"
    camera = best["gphoto2"] / best["orvanta-camera"]
    printf "%-52s %8.3f %8.2f %10.1f %8.2f\n", "orvanta import of the camera (copy and catalogue)", best["orvanta-camera"], bestCpu["orvanta-camera"], peak["orvanta-camera"] / 1024, camera
    printf "%-52s %8.3f %8.2f %10.1f %8s\n", "scanimage --format=jpeg, 300-dpi colour page", best["scanimage"], bestCpu["scanimage"], peak["scanimage"] / 1024, "1.00"
    scanner = best["scanimage"] / best["orvanta-scanner"]
    printf "%-52s %8.3f %8.2f %10.1f %8.2f\n", "orvanta import of the scanner (scan, JPEG, copy)", best["orvanta-scanner"], bestCpu["orvanta-scanner"], peak["orvanta-scanner"] / 1024, scanner
    if (camera < 0.9) { print "compare-acquire: orvanta copied below 0.9 times gphoto2'"'"'s rate" > "/dev/stderr"; failed = 1 }
    if (scanner < 0.9) { print "compare-acquire: orvanta scanned below 0.9 times scanimage'"'"'s rate" > "/dev/stderr"; failed = 1 }
    exit failed
  }' "$work/timings"
