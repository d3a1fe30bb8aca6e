#!/usr/bin/env bash
# bench.sh [--build-only] [benchmark args...] - builds the Google Benchmark suites and runs them.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
bash scripts/ensure-packages.sh "${VELORA_BENCH_PACKAGES[@]}"
cmake --preset bench >/dev/null
cmake --build --preset bench -j "$(nproc)"
[ "${1:-}" = --build-only ] && exit 0
for target in build/bench/bin/*_benchmark; do
  echo "=== $(basename "$target")"
  "$target" --benchmark_repetitions=3 --benchmark_report_aggregates_only=true "$@"
done
