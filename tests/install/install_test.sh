#!/usr/bin/env bash
# What a user of the installed library does, in a scratch folder:
# 1. installs into a prefix outside the loader's path and runs the installed
#    basicutils tool from it (its run path finds the library);
# 2. builds and runs an outside program through find_package, and through
#    pkg-config with the .pc file exactly as installed;
# 3. makes the Debian package with cpack, unpacks it with dpkg-deb -x into a
#    scratch root, and does the same against that tree.
# Arguments: the build folder, the source folder.
set -euo pipefail
build="$1"
source="$2"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
consumer="$source/tests/install/consumer"

# Builds and runs the outside program both ways against the tree at $1.
check_tree() {
  local prefix="$1" name="$2"
  "$prefix/bin/basicutils" --version | grep -q '^basicutils '
  "$prefix/bin/basicutils" tc frames 01:00:00:00 | grep -q 'frame 108001'
  cmake -S "$consumer" -B "$work/$name-cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_BUILD_TYPE=Release >/dev/null
  cmake --build "$work/$name-cmake" >/dev/null
  local libdir
  libdir=$(dirname "$(find "$prefix" -name 'libbasicutils.so' | head -n 1)")
  LD_LIBRARY_PATH="$libdir" "$work/$name-cmake/consumer"
  local pcdir
  pcdir=$(dirname "$(find "$prefix" -name basicutils.pc | head -n 1)")
  local flags
  flags=$(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs basicutils)
  case "$flags" in *"$prefix"*) ;; *) echo "pkg-config does not point into $prefix: $flags"; exit 1 ;; esac
  c++ -o "$work/$name-pc" "$consumer/main.cpp" $flags
  LD_LIBRARY_PATH="$libdir" "$work/$name-pc"
}

cmake --install "$build" --prefix "$work/opt/basicutils" >/dev/null
check_tree "$work/opt/basicutils" prefix

(cd "$work" && cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/package" >/dev/null)
deb=$(find "$work/package" -maxdepth 1 -name '*.deb' | head -n 1)
dpkg-deb -f "$deb" Description | grep -q 'MIT'
dpkg-deb -x "$deb" "$work/root"
check_tree "$work/root/usr" deb
echo "install test: the prefix and the Debian package both serve the tool, find_package and pkg-config"
