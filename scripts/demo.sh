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

# The nuthatch on tree bark is a real photograph (the others are mostly abstract art): start with it.
first=${jpegs[0]}
for jpeg in "${jpegs[@]}"; do [[ $jpeg == *Kleiber* ]] && first=$jpeg; done
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

# A camera photograph (EXIF with a maker) with sides in whole 8-pixel blocks, for the turn in place.
camera=
for jpeg in "${jpegs[@]}"; do
  IFS=$'\t' read -r _ _ width height _ < <("$orvanta" info "$jpeg")
  (( width % 8 == 0 && height % 8 == 0 )) || continue
  if ! command -v exiftool > /dev/null || [ -n "$(exiftool -q -s3 -Make "$jpeg")" ]; then
    camera=$jpeg; break
  fi
done
if [ -n "$camera" ]; then
  echo
  echo "== A copy of $(basename "$camera") turned in place (orvanta edit FILE FILE rotate=90): done in the file, no re-encoding"
  cp "$camera" "$out/in-place.jpg"
  chmod u+w "$out/in-place.jpg"
  "$orvanta" edit "$out/in-place.jpg" "$out/in-place.jpg" rotate=90
  if command -v jpegtran > /dev/null && command -v djpeg > /dev/null; then
    jpegtran -rotate 90 -trim -copy all -outfile "$out/jpegtran-90.jpg" "$camera"
    if cmp -s <(djpeg -pnm "$out/in-place.jpg") <(djpeg -pnm "$out/jpegtran-90.jpg"); then
      echo "pixels: equal to jpegtran -rotate 90 -trim -copy all"
    else
      echo "pixels: DIFFERENT from jpegtran -rotate 90" >&2; exit 1
    fi
    if command -v exiftool > /dev/null; then
      tags() { exiftool -G1 -s -a -n -x File:all -x System:all -x Composite:all -x ExifTool:all "$1" | grep -v -e Thumbnail -e '^\[IFD1\]'; }
      echo "EXIF: $(tags "$out/in-place.jpg" | wc -l) tags, those that differ from the photograph's (the thumbnail aside):"
      diff <(tags "$camera") <(tags "$out/in-place.jpg") && echo "  none" || true
      exiftool -s -Make -Model -DateTimeOriginal -ImageSize -ThumbnailImage "$out/in-place.jpg"
    fi
  fi
fi

echo
echo "== Edits with undo on the first photograph (orvanta edit)"
"$orvanta" edit "$first" "$out/edited.jpg" downsize=1600x1600 rotate=90 crop=0.1,0.1,0.9,0.9 picfix sepia undo redo
"$orvanta" edit "$first" "$out/mirrored.bmp" downsize=800x800 mirror=h bw undo colorize=0.6,0.5,0.4

echo
echo "== Every photograph of the folder into 160 x 160 thumbnails, in the background (orvanta batch-convert)"
rm -rf "$out/thumbnails"
"$orvanta" batch-convert "$(dirname "$first")" "$out/thumbnails" --max 160x160

echo
echo "== A video is catalogued, never opened: its thumbnail is the host's film frame (orvanta thumb)"
: > "$out/clip.mov"
"$orvanta" thumb "$out/clip.mov" "$out/clip-thumb.jpg"

echo
echo "== A catalogue of the photographs, the pictures made above and the video (orvanta db)"
rm -f "$out/catalogue.db"
"$orvanta" db add "$out/catalogue.db" "${jpegs[@]}" "$out/first.tif" "$out/first.bmp" "$out/edited.jpg" \
  "$out/clip.mov" > /dev/null
"$orvanta" db stats "$out/catalogue.db" | grep -E '^(records|block size|payload bytes)'
"$orvanta" db dump "$out/catalogue.db" | head -n 14

echo
echo "== The wallpaper photographs and the test videos imported into a catalogue with their thumbnails (orvanta catalog)"
rm -rf "$out/catalog.db" "$out/catalog.db-thumbnails" "$out/catalog-thumbnails"
videos=()
[ -d ../shared/testdata/video ] && videos=(../shared/testdata/video)
"$orvanta" catalog import --catalog "$out/catalog.db" /usr/share/backgrounds "${videos[@]}" | tail -n 1
echo "-- by date (ID, date, path), the first 12:"
"$orvanta" catalog list --catalog "$out/catalog.db" | head -n 12
echo "-- their stored thumbnails, exported:"
mkdir -p "$out/catalog-thumbnails"
while IFS=$'\t' read -r id _ path; do
  name=$(basename "$path")
  "$orvanta" catalog thumb --catalog "$out/catalog.db" "$id" "$out/catalog-thumbnails/${name%.*}.jpg"
done < <("$orvanta" catalog list --catalog "$out/catalog.db" | head -n 12)
"$orvanta" catalog stats --catalog "$out/catalog.db" | grep -E '^(assets|photos|videos|earliest|latest)'

echo
echo "== A window of the toolkit's controls, drawn offscreen with the first photograph (orvanta-window-demo)"
"$(dirname "$orvanta")/orvanta-window-demo" "$out/window.png" "$first"

echo
echo "== A wizard of three pages of skinned controls, shown through the forced-modeless switches and driven by posted clicks"
"$(dirname "$orvanta")/orvanta-window-demo" --wizard "$out"

echo
echo "== A dialog holding one of each standard widget, drawn by the toolkit, with its calendar and drop-down list open"
"$(dirname "$orvanta")/orvanta-window-demo" --widgets "$out"

echo
echo "== Printing: a 4 x 5 contact sheet and one photograph a page (orvanta print)"
# wait_job DIR ID: waits until the private server's backend has saved job ID, and prints its path.
wait_job() {
  for _ in $(seq 300); do [ -f "$1/out/job-$2.pdf" ] && { echo "$1/out/job-$2.pdf"; return 0; }; sleep 0.1; done
  echo "demo: job $2 never reached the printer" >&2
  return 1
}
if [ -x /usr/sbin/cupsd ] && [ "$(id -u)" -eq 0 ]; then
  cupsdir=$(mktemp -d /tmp/orvanta-demo-cups.XXXXXX)
  trap 'bash "$(dirname "$0")/private-cups.sh" stop "$cupsdir"; rm -rf "$cupsdir"' EXIT
  CUPS_SERVER=$(bash "$(dirname "$0")/private-cups.sh" start "$cupsdir")
  export CUPS_SERVER
  echo "(through a private CUPS server with one printer, Demo)"
  "$orvanta" printers
  sheet=$("$orvanta" print --printer Demo --layout 4x5 "${photos[@]}")
  echo "$sheet"
  cp "$(wait_job "$cupsdir" "$(echo "$sheet" | awk -F'\t' '{print $2}' | sed 's/job //')")" "$out/contact-sheet.pdf"
  single=$("$orvanta" print --printer Demo "${jpegs[@]}")
  echo "$single"
  cp "$(wait_job "$cupsdir" "$(echo "$single" | awk -F'\t' '{print $2}' | sed 's/job //')")" "$out/one-per-page.pdf"
else
  echo "(no CUPS server here: into PDF files directly)"
  "$orvanta" print --to-pdf "$out/contact-sheet.pdf" --layout 4x5 "${photos[@]}"
  "$orvanta" print --to-pdf "$out/one-per-page.pdf" "${jpegs[@]}"
fi
if command -v pdfinfo > /dev/null; then
  for pdf in contact-sheet one-per-page; do
    echo "$pdf.pdf: $(pdfinfo "$out/$pdf.pdf" | grep -E '^Pages' | tr -s ' ')"
  done
fi
echo
echo "== The contact sheet's first page in a print preview, drawn by the job's own code (orvanta-window-demo)"
"$(dirname "$orvanta")/orvanta-window-demo" --print-preview "$out/print-preview.png" "${photos[@]}"

echo
echo "== Photographs imported from a camera: libgphoto2's directory camera serving a folder (orvanta import)"
camera_dir=$(mktemp -d /tmp/orvanta-demo-camera.XXXXXX)
mkdir -p "$camera_dir/DCIM/100DEMO" "$camera_dir/DCIM/101DEMO/nested" "$camera_dir/DCIM/102EMPTY"
i=0
for jpeg in "${jpegs[@]}"; do
  i=$((i + 1))
  folder=$camera_dir/DCIM/100DEMO
  (( i % 2 )) || folder=$camera_dir/DCIM/101DEMO/nested
  cp "$jpeg" "$folder/$(printf 'IMG_%04d.JPG' "$i")"
done
rm -rf "$out/imported" "$out/imported.db"
echo "-- the sources this machine offers (orvanta devices):"
"$orvanta" devices || true
echo "-- the camera copied, then copied again: every photograph is there already, nothing is overwritten"
"$orvanta" import "Directory Browse@disk:$camera_dir" --to "$out/imported" --catalog "$out/imported.db"
"$orvanta" import "Directory Browse@disk:$camera_dir" --to "$out/imported" --catalog "$out/imported.db"
"$orvanta" catalog list --catalog "$out/imported.db"
rm -rf "$camera_dir"

echo
echo "== Orvanta Photos driven by a script of posted input: import, scroll, open, crop, red eye, save"
bash "$(dirname "$0")/photos-demo.sh" "$(dirname "$orvanta")/orvanta-photos" "$out"

echo
echo "Pictures written to $out/"
