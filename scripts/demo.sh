#!/usr/bin/env bash
# The engine at work on real photographs: Debian's wallpaper packages ship them under
# /usr/share/backgrounds. Usage: demo.sh PATH_TO_ORVANTA
set -euo pipefail
orvanta=$1
out=${DEMO_OUT:-build/demo}
mkdir -p "$out"
mapfile -t photos < <(find /usr/share/backgrounds -type f \( -iname '*.jpg' -o -iname '*.jpeg' -o -iname '*.tif' -o -iname '*.tiff' -o -iname '*.bmp' \) | sort | head -n 8)
[ ${#photos[@]} -gt 0 ] || { echo "demo: no photographs under /usr/share/backgrounds" >&2; exit 1; }

# A few of the photographs as bitmaps too, made by ImageMagick, so every codec has real input.
bitmaps=()
for photo in "${photos[@]:0:3}"; do
  bmp="$out/$(basename "${photo%.*}").bmp"
  [ -f "$bmp" ] || /usr/bin/convert "$photo" -resize 1600x1600 -type TrueColor "BMP3:$bmp"
  bitmaps+=("$bmp")
done

echo "== What each picture is (orvanta info)"
"$orvanta" info "${photos[@]}" "${bitmaps[@]}" || true
