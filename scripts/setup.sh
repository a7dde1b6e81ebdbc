#!/usr/bin/env bash
# Installs what BasicUtils needs to build, test, benchmark and fuzz on Debian 12.
# Does nothing when everything is already there. Otherwise it needs root or
# sudo; without either it prints the command to run and exits with status 1.
set -euo pipefail
packages=(cmake ninja-build g++ clang libclang-rt-14-dev pkg-config
          libgtest-dev libbenchmark-dev liburing-dev
          xvfb xdotool libgtk-3-0)  # the last three: the file dialog tests on a virtual display
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
command="apt-get update -qq && apt-get install -y -qq --no-install-recommends ${missing[*]}"
if [ "$(id -u)" -eq 0 ]; then
  SUDO=""
elif command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
  SUDO="sudo"
else
  echo "setup: missing packages: ${missing[*]}" >&2
  echo "setup: as root, run: $command" >&2
  exit 1
fi
echo "setup: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
