#!/usr/bin/env bash
# Installs the Debian packages that building, testing and demonstrating Orvanta need.
# Usage: install-deps.sh [--bench]. Idempotent: packages already present are skipped, and apt is not touched when nothing is missing.
set -euo pipefail

packages=(
  # toolchain
  g++
  cmake
  ninja-build
  pkg-config
  clang
  libclang-rt-14-dev
  # tests and benchmarks
  libgtest-dev
  libgmock-dev
  libbenchmark-dev
  # the record store's benchmark compares with these two stores in the same program, the
  # catalogue's benchmark with SQLite
  libsqlite3-dev
  liblmdb-dev
  # the thumbnail store's benchmark reads the same thumbnails as PNG files of the freedesktop cache
  libpng-dev
  # libraries the engine links
  libicu-dev
  # identifiers (libuuid) and desktop services: opening documents, display settings, the
  # preferences file (GLib's key files), the wallpaper (GNOME's settings schemas, read back by the
  # tests with gsettings)
  uuid-dev
  libglib2.0-dev
  gsettings-desktop-schemas
  libglib2.0-bin
  # picture scaling by the platform (pixman compositing)
  libpixman-1-dev
  # JPEG and TIFF codecs: libjpeg-turbo (scaled decoding, the coefficients of lossless turns),
  # libexif for the EXIF thumbnail, libtiff
  libjpeg62-turbo-dev
  libexif-dev
  libtiff-dev
  # windows and drawing: SDL2 (display connection, input), Cairo (canvases, PDF), Pango (text); the
  # fonts the tests pin; Xvfb, xdotool and xwd for the tests on a real X server; pdfimages to check
  # that a PDF page holds a JPEG untouched
  libsdl2-dev
  libcairo2-dev
  libpango1.0-dev
  fonts-dejavu-core
  xvfb
  xdotool
  x11-apps
  poppler-utils
  # printing: CUPS's library (loaded when printers are first asked about), and the server the tests
  # start a private instance of
  libcups2-dev
  cups-daemon
  # acquisition: libgphoto2 for cameras (loaded when cameras are first asked about) and its
  # command-line tool, which the benchmark times beside orvanta; SANE for scanners (in a helper
  # process), with its test backend and scanimage
  libgphoto2-dev
  gphoto2
  libsane-dev
  libsane1
  sane-utils
  # Xlib, to notice that the X server went away; XCB, to own the X clipboard for file lists and
  # pictures; xclip, for the tests to paste them as another program would
  libx11-dev
  libxcb1-dev
  xclip
  # reference tools the tests compare against: decoders (ImageMagick, GraphicsMagick, djpeg),
  # jpegtran's rotation, exiftool's tag reading, tiffinfo
  imagemagick
  graphicsmagick
  libjpeg-turbo-progs
  libimage-exiftool-perl
  libtiff-tools
  # real photographs for the demo
  lomiri-wallpapers-20.04
  mate-backgrounds
)

# With --bench: the reference tools the benchmark scripts time beside orvanta, and what makes their
# input photographs.
if [ "${1:-}" = "--bench" ]; then
  packages+=(libvips-tools exiv2 exiftran img2pdf
             sqlite3 lmdb-utils hyperfine time)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "install-deps: installing ${missing[*]}"
SUDO=""
[ "$(id -u)" -eq 0 ] || SUDO=sudo
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
