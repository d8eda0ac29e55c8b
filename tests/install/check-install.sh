#!/usr/bin/env bash
# Installs the built library into a temporary prefix and builds two tiny hosts against the installed
# copy: a C host through pkg-config, and a C++ host through find_package(Orvanta). Both must run.
# Usage: check-install.sh BUILD_DIR CONSUMERS_DIR
set -euo pipefail
build=$1
consumers=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix="$work/prefix"

cmake --install "$build" --prefix "$prefix" > /dev/null
# The build was configured for its own prefix; point the pkg-config file at the temporary one.
sed -i "s|^prefix=.*|prefix=$prefix|" "$prefix"/lib*/pkgconfig/orvanta.pc 2>/dev/null || \
  sed -i "s|^prefix=.*|prefix=$prefix|" "$prefix"/lib/*/pkgconfig/orvanta.pc
pcdir=$(dirname "$(find "$prefix" -name orvanta.pc | head -n 1)")

# Sanitizer builds need their runtime in the consumers too. (grep reads all of nm's output: with
# pipefail, grep -q would end the pipe early and nm's SIGPIPE would read as "not found".)
extra=""
if nm -D "$(find "$prefix" -name 'liborvanta.so' | head -n 1)" 2>/dev/null | grep __asan_init >/dev/null; then
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
echo "install: both hosts ran"
