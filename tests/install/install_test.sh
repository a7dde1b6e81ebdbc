#!/usr/bin/env bash
# Installs the built library into a temporary prefix, then builds and runs an
# outside program against it twice: through find_package and through
# pkg-config. Arguments: the build folder, the source folder.
set -euo pipefail
build="$1"
source="$2"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/prefix" >/dev/null
cmake -S "$source/tests/install/consumer" -B "$work/consumer" -G Ninja \
      -DCMAKE_PREFIX_PATH="$work/prefix" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$work/consumer" >/dev/null
libdir=$(dirname "$(find "$work/prefix" -name 'libbasicutils.so' | head -n 1)")
LD_LIBRARY_PATH="$libdir" "$work/consumer/consumer"
pcdir=$(dirname "$(find "$work/prefix" -name basicutils.pc | head -n 1)")
sed -i "s|^prefix=.*|prefix=$work/prefix|" "$pcdir/basicutils.pc"
PKG_CONFIG_PATH="$pcdir" c++ -o "$work/pc-consumer" "$source/tests/install/consumer/main.cpp" \
    $(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs basicutils)
LD_LIBRARY_PATH="$libdir" "$work/pc-consumer"
echo "install test: find_package and pkg-config consumers built and ran"
