#!/usr/bin/env bash
# Runs every fuzz target briefly, seeded from the real files of the shared test data where they exist.
# Usage: run-all.sh BUILD_DIR   (FUZZ_SECONDS per target, default 20)
set -euo pipefail
build=$1
seconds=${FUZZ_SECONDS:-20}
here=$(cd "$(dirname "$0")" && pwd)
testdata=$(cd "$here/../.." && pwd)/shared/testdata
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

status=0
for target in "$build"/bin/*_fuzzer; do
  name=$(basename "$target")
  corpus="$work/$name"
  mkdir -p "$corpus"
  # A target's seed folders are listed in fuzz/<name>.seeds, one test data folder a line.
  if [ -f "$here/$name.seeds" ] && [ -d "$testdata" ]; then
    while read -r folder; do
      [ -n "$folder" ] && cp "$testdata/$folder"/* "$corpus"/ 2>/dev/null || true
    done < "$here/$name.seeds"
  fi
  echo "fuzz: $name for ${seconds}s"
  if ! "$target" -max_total_time="$seconds" -max_len=65536 -rss_limit_mb=2048 -print_final_stats=0 \
        -artifact_prefix="$work/" "$corpus" > "$work/$name.log" 2>&1; then
    echo "fuzz: $name FOUND A PROBLEM"; tail -n 60 "$work/$name.log"; status=1
    mkdir -p build/fuzz-artifacts && cp "$work"/crash-* "$work"/leak-* "$work"/timeout-* build/fuzz-artifacts/ 2>/dev/null || true
  else
    grep -E '^#[0-9]+.*DONE|Done [0-9]+ runs' "$work/$name.log" | tail -n 1 || true
  fi
done
[ $status -eq 0 ] && echo "fuzz: 0 failed"
exit $status
