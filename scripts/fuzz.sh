#!/usr/bin/env bash
# Long fuzzing runs with libFuzzer (the `fuzz` preset, clang). Runs each
# harness for SECONDS (default 60) on a scratch copy of its corpus, then
# rebuilds fuzz/corpus/NAME/ as the smallest set of old and new inputs that
# reaches the same code (-merge=1 counting edges only), so the checked-in
# corpus stays at a few dozen files. A crash leaves its input in
# build/fuzz/NAME-artifacts/.
# Usage: scripts/fuzz.sh [SECONDS] [NAME...]   (NAME as in fuzz/NAME_fuzz.cpp)
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-60}"
shift || true
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
names=("$@")
if [ ${#names[@]} -eq 0 ]; then
  for f in fuzz/*_fuzz.cpp; do names+=("$(basename "$f" _fuzz.cpp)"); done
fi
for name in "${names[@]}"; do
  fuzzer="build/fuzz/${name}_fuzz"
  corpus="fuzz/corpus/$name"
  work="build/fuzz/$name"
  rm -rf "$work/scratch" "$work/merged"
  mkdir -p "$corpus" "$work/scratch" "$work/merged" "$work/artifacts"
  cp "$corpus"/* "$work/scratch"/ 2>/dev/null || true
  echo "fuzz: $name for ${seconds}s"
  "$fuzzer" -max_total_time="$seconds" -max_len=512 -print_final_stats=1 \
      -artifact_prefix="$work/artifacts/" "$work/scratch" 2>&1 | tail -n 3
  "$fuzzer" -merge=1 -use_counters=0 -use_value_profile=0 "$work/merged" "$work/scratch" 2>&1 | tail -n 1
  rm -f "$corpus"/*
  cp "$work/merged"/* "$corpus"/
done
