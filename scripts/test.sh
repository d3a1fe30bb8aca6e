#!/usr/bin/env bash
# test.sh - builds and runs the whole test suite: the native library, the sanitizer builds
# (ASan+UBSan, TSan) and the Windows DLL cross-built with MinGW and run under Wine.
# Usage: scripts/test.sh [preset...]   (default: native asan tsan windows)
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
bash scripts/ensure-packages.sh "${VELORA_TEST_PACKAGES[@]}"

presets=("$@")
[ ${#presets[@]} -eq 0 ] && presets=(native asan tsan windows)

export WINEDEBUG=-all
jobs=$(nproc)
for preset in "${presets[@]}"; do
  echo "=== ${preset}: configure and build"
  if [ "$preset" = windows ]; then
    # Wine creates its prefix on first start (about 10 s); do it once here rather than inside a
    # timed test.
    timeout 300 /usr/lib/wine/wine64 cmd /c exit >/dev/null 2>&1 || true
  fi
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j "$jobs"
  echo "=== ${preset}: test"
  ctest --preset "$preset" -j "$jobs"
  # Which platform backend this product ran on (the platform test prints it).
  grep -h 'platform backend:' "build/$preset/Testing/Temporary/LastTest.log" | sort -u | sed "s/^/=== ${preset}: /" || true
done
echo "=== all test presets passed: ${presets[*]}"
