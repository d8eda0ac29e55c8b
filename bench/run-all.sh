#!/usr/bin/env bash
# Runs every benchmark program and every comparison script.
# Usage: run-all.sh BUILD_DIR
set -euo pipefail
build=$1
here=$(cd "$(dirname "$0")" && pwd)
for program in "$build"/bin/bench_*; do
  [ -x "$program" ] || continue
  echo "== $(basename "$program")"
  "$program" --benchmark_counters_tabular=true
done
for script in "$here"/compare-*.sh; do
  [ -f "$script" ] || continue
  echo "== $(basename "$script")"
  bash "$script" "$build"
done
