#!/usr/bin/env bash
# The main job: install what is missing, build the release preset, run the
# basicutils tool (with no arguments it runs its built-in example).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release
exec build/release/bin/basicutils "$@"
