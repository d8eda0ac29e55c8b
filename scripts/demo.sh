#!/usr/bin/env bash
# The engine at work on real photographs: Debian's wallpaper packages ship them under
# /usr/share/backgrounds. Usage: demo.sh PATH_TO_ORVANTA
set -euo pipefail
orvanta=$1
out=${DEMO_OUT:-build/demo}
mkdir -p "$out"
mapfile -t photos < <(find /usr/share/backgrounds -type f \( -iname '*.jpg' -o -iname '*.jpeg' -o -iname '*.tif' -o -iname '*.tiff' -o -iname '*.bmp' \) | sort | head -n 12)
[ ${#photos[@]} -gt 0 ] || { echo "demo: no photographs under /usr/share/backgrounds" >&2; exit 1; }

echo "== What each picture is (orvanta info)"
"$orvanta" info "${photos[@]}" || true

mapfile -t jpegs < <(printf '%s\n' "${photos[@]}" | grep -iE '\.jpe?g$' | head -n 6)
[ ${#jpegs[@]} -gt 0 ] || exit 0

echo
echo "== Each photograph shrunk into 320 x 320, its metadata kept (orvanta convert --max)"
for i in "${!jpegs[@]}"; do
  "$orvanta" convert "${jpegs[$i]}" "$out/small-$i.jpg" --max 320x320 || true
done

first=${jpegs[0]}
echo
echo "== The first one as TIFF and BMP, fitted into 800 x 600"
"$orvanta" convert "$first" "$out/first.tif" --max 800x600
"$orvanta" convert "$out/first.tif" "$out/first.bmp"
"$orvanta" info "$out/first.tif" "$out/first.bmp"

echo
echo "== A copy turned a quarter clockwise without re-encoding (orvanta rotate), then a thumbnail of it"
cp "$first" "$out/turned.jpg"
"$orvanta" rotate "$out/turned.jpg" 90
"$orvanta" thumb "$out/turned.jpg" "$out/turned-thumb.jpg" --box 160x160
echo
echo "Pictures written to $out/"
