#!/usr/bin/env bash
# fuzz.sh [SECONDS] - builds the libFuzzer targets and runs each for SECONDS (default 30).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
bash scripts/ensure-packages.sh "${VELORA_FUZZ_PACKAGES[@]}"
seconds=${1:-30}
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)"
for target in build/fuzz/bin/*_fuzz; do
  name=$(basename "$target")
  corpus=build/fuzz/corpus/$name
  mkdir -p "$corpus"
  echo "=== fuzzing $name for ${seconds}s"
  "$target" -max_total_time="$seconds" -print_final_stats=1 "$corpus" 2>&1 | tail -n 12
  # libFuzzer exits non-zero on a crash, a leak or a failed invariant (abort).
  [ "${PIPESTATUS[0]}" -eq 0 ] || { echo "$name failed" >&2; exit 1; }
done
