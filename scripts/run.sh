#!/usr/bin/env bash
# The main job: install what is missing, build the library and the basicutils
# tool only (the `tool` preset: no tests, no GoogleTest), and run the tool
# (with no arguments it runs its built-in example).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset tool >/dev/null
cmake --build --preset tool
exec build/tool/bin/basicutils "$@"
