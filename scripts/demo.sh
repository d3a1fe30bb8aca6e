#!/usr/bin/env bash
# demo.sh - builds the native library and velora-util, then runs it on the bundled samples.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
bash scripts/ensure-packages.sh "${VELORA_BUILD_PACKAGES[@]}" googletest

cmake --preset native >/dev/null
cmake --build --preset native --target velora-util >/dev/null
tool=build/native/bin/velora-util

echo "== velora-util tape samples/trades.txt"
"$tool" tape samples/trades.txt
echo
echo "== velora-util format 1234567 -42"
"$tool" format 1234567 -42
