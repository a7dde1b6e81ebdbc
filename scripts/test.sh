#!/usr/bin/env bash
# Builds and runs the whole test suite. With an argument, uses that preset
# (release, debug-asan, tsan, clang); the default is release.
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-release}"
scripts/setup.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset"
