#!/usr/bin/env bash
# Checks the include layering of the tree: a subsystem includes only itself
# and the subsystems it stands on, nothing includes the tool, and only the
# platform layer includes POSIX headers. Prints each breach; exits 1 if any.
# Usage: scripts/check-layering.sh [SOURCE_DIR]
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

# What each subsystem may include besides itself and platform/ (which is
# under everything). Edit this table when the design changes.
# text and containers form the bottom layer together (the string lists are
# CVoidLists, the scoped memory holders hold MStrings).
declare -A allowed=(
  [text]="containers"
  [containers]="text"
  [messaging]="containers text"
  [time]="messaging containers text"
  [files]="time messaging containers text"
  [bitstream]=""
  [undo]="containers tasks"   # the history is an LList guarded by a StSingleLock
  [tasks]="messaging containers text"
  [script]="files time messaging containers text"
  [environment]="files time messaging containers text"
  [platform]=""
)
# POSIX and Linux headers: only basicutils/platform/ may include them.
posix='unistd\.h|pthread\.h|sys/[a-z_/]+\.h|fcntl\.h|dirent\.h|dlfcn\.h|signal\.h|poll\.h|termios\.h|liburing\.h|linux/[a-z_/]+\.h|semaphore\.h|sched\.h|spawn\.h|aio\.h'

breaches=0
breach() { echo "layering: $1"; breaches=$((breaches + 1)); }
while IFS= read -r file; do
  sub=$(echo "$file" | cut -d/ -f2)
  [ -f "$file" ] || continue
  while IFS= read -r line; do
    header=$(echo "$line" | sed -E 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"]([^>"]+)[>"].*/\1/')
    case "$header" in
      tools/*|*basicutils/tools/*) breach "$file includes the tool: $header" ;;
      basicutils/*/*)
        target=$(echo "$header" | cut -d/ -f2)
        if [ "$file" = "${file#basicutils/}" ]; then continue; fi   # outside the library
        if [ "$target" != "$sub" ] && [ "$target" != platform ] && \
           [[ " ${allowed[$sub]:-} " != *" $target "* ]]; then
          breach "$file ($sub) includes $header ($target)"
        fi ;;
    esac
    if [[ "$header" =~ ^($posix)$ ]] && [[ "$file" != basicutils/platform/* ]]; then
      breach "$file includes the POSIX header <$header>"
    fi
  done < <(grep -E '^[[:space:]]*#[[:space:]]*include' "$file" || true)
done < <(find basicutils tools bench fuzz tests -name '*.h' -o -name '*.cpp' | grep -v '^basicutils/[^/]*$')
for file in basicutils/*.h basicutils/*.cpp; do  # the umbrella and the load-time objects see all
  grep -Eq "#include <($posix)>" "$file" && breach "$file includes a POSIX header"
done
if [ "$breaches" -gt 0 ]; then
  echo "layering: $breaches breach(es)"
  exit 1
fi
echo "layering: every include follows the table"
