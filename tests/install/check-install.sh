#!/usr/bin/env bash
# Installs the built library into a prefix other than the one it was configured for, moves the
# installed tree elsewhere, and builds two tiny hosts against it there: a C host through pkg-config,
# and a C++ host through find_package(Orvanta). Both must run, and so must the installed orvanta
# host, with its manual page beside it. Nothing installed may name the configured prefix.
# Usage: check-install.sh BUILD_DIR CONSUMERS_DIR
set -euo pipefail
build=$1
consumers=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
configured=$(sed -n 's/^CMAKE_INSTALL_PREFIX:PATH=//p' "$build/CMakeCache.txt")

cmake --install "$build" --prefix "$work/installed" > /dev/null
mv "$work/installed" "$work/prefix"
prefix="$work/prefix"
if grep -rl -e "$configured" -e "$work/installed" "$prefix"/lib*/pkgconfig "$prefix"/lib*/cmake \
     "$prefix"/lib/*/pkgconfig "$prefix"/lib/*/cmake 2>/dev/null; then
  echo "install: the files above name the prefix they were installed to"; exit 1
fi
pcdir=$(dirname "$(find "$prefix" -name orvanta.pc | head -n 1)")

# Sanitizer builds need their runtime in the consumers too.
extra=""
if readelf -d "$(find "$prefix" -name 'liborvanta.so' | head -n 1)" | grep -q 'NEEDED.*libasan'; then
  extra="-fsanitize=address,undefined"
fi

echo "C host through pkg-config"
${CC:-cc} $extra -o "$work/c-host" "$consumers/host.c" $(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs orvanta)
"$work/c-host"

echo "C++ host through find_package"
cmake -S "$consumers" -B "$work/cmake-host" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_FLAGS="$extra" -DCMAKE_EXE_LINKER_FLAGS="$extra" > /dev/null
cmake --build "$work/cmake-host" > /dev/null
"$work/cmake-host/cxx-host"

echo "the orvanta host and its manual page"
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
test "$(ASAN_OPTIONS=detect_leaks=0 "$prefix/bin/orvanta" --version)" = "orvanta $version"
page=$(find "$prefix" -path '*/man1/orvanta.1')
for command in info edit batch-convert db convert rotate thumb; do
  grep -q "^\.SS $command\$" "$page" || { echo "install: the manual page lacks $command"; exit 1; }
done
if command -v groff > /dev/null; then
  test -z "$(groff -man -Tutf8 -ww -z "$page" 2>&1)"
fi
echo "install: both hosts ran, the orvanta host too"
