#!/usr/bin/env bash
# Orvanta Photos driven without a person: the wallpaper photographs and the red-eye test portrait are
# imported into a private catalogue through the import dialog, the grid is scrolled, a photo is
# opened and cropped, the portrait's red eyes are fixed with two clicks, both are saved; last, Import
# looks through a camera (a folder of photos served by libgphoto2's "Directory Browse" driver) and
# shows what it found. Each screen is written to OUT/photos-*.png. Usage: photos-demo.sh PATH_TO_ORVANTA_PHOTOS [OUT]
set -euo pipefail
photos=$1
out=${2:-build/demo}
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$out"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/photos"
find /usr/share/backgrounds -type f \( -iname '*.jpg' -o -iname '*.jpeg' \) -exec cp -n {} "$work/photos/" \;
portrait="$here/../../shared/testdata/redeye/redeye-boldredeye-nikon-d40-300x226.jpg"
[ -f "$portrait" ] && cp "$portrait" "$work/photos/portrait-redeye.jpg"
[ -n "$(ls -A "$work/photos")" ] || { echo "photos demo: no photographs to import" >&2; exit 1; }

# The camera: a few of the photographs in a DCIM folder. SANE is given no scanners to look for, and
# libgphoto2 keeps its settings in the run's own home.
mkdir -p "$work/camera/DCIM/100DEMO" "$work/sane" "$work/home"
find "$work/photos" -maxdepth 1 -type f | sort | head -n 8 | xargs -r -I{} cp {} "$work/camera/DCIM/100DEMO/"

sed "s|@FOLDER@|$work/photos|" "$here/photos-demo.txt" > "$work/script.txt"
HOME="$work/home" SANE_CONFIG_DIR="$work/sane" XDG_DATA_HOME="$work/data" XDG_CONFIG_HOME="$work/config" \
  SDL_VIDEODRIVER=${SDL_VIDEODRIVER:-offscreen} \
  "$photos" --size 1024x640 --script "$work/script.txt" --shots "$out" \
  --camera "Directory Browse@disk:$work/camera"
ls "$out"/photos-*.png
