#!/usr/bin/env bash
# fuzz.sh [SECONDS] - builds the libFuzzer targets and runs each for SECONDS (default 30).
# Corpora, logs and any crash reproducer stay in build/fuzz/.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
bash scripts/ensure-packages.sh "${VELORA_FUZZ_PACKAGES[@]}"
seconds=${1:-30}
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)"
cd build/fuzz
for target in bin/*_fuzz; do
  name=$(basename "$target")
  mkdir -p "corpus/$name"
  echo "=== fuzzing $name for ${seconds}s"
  # libFuzzer exits non-zero on a crash, a leak or a failed invariant (abort).
  if ! "$target" -max_total_time="$seconds" -print_final_stats=1 "corpus/$name" >"$name.log" 2>&1; then
    tail -n 60 "$name.log" >&2
    echo "=== $name FAILED (reproducer and log in build/fuzz/)" >&2
    exit 1
  fi
  grep -E '^(Done|stat::number_of_executed_units)' "$name.log" || true
done
