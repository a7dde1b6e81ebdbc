#!/usr/bin/env bash
# Installs what BasicUtils needs to build, test, benchmark and fuzz on Debian 12.
# Does nothing when everything is already there; needs root (or sudo) otherwise.
set -euo pipefail
packages=(cmake ninja-build g++ clang libclang-rt-14-dev pkg-config
          libgtest-dev libgmock-dev libbenchmark-dev liburing-dev
          xvfb xdotool libgtk-3-0)  # the last three: the file dialog tests on a virtual display
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "setup: installing ${missing[*]}" >&2
SUDO=""
[ "$(id -u)" -eq 0 ] || SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
