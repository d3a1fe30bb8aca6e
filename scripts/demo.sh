#!/usr/bin/env bash
# demo.sh - builds the native library and velora-util, then runs its main job, the FIX stream
# inspector, on the bundled session logs (and the other commands on their samples).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/packages.sh
bash scripts/ensure-packages.sh "${VELORA_BUILD_PACKAGES[@]}" googletest

cmake --preset native >/dev/null
cmake --build --preset native --target velora-util >/dev/null
tool=build/native/bin/velora-util

echo "== velora-util fix scan samples/fix/session-fix44.log   (session messages shown; orders and fills counted)"
"$tool" fix scan --type A,0,1,3,j,5 samples/fix/session-fix44.log
echo
echo "== velora-util fix scan samples/fix/session-fix44-damaged.log   (the same log with injected damage)"
status=0
"$tool" fix scan --type ZZ samples/fix/session-fix44-damaged.log || status=$?
echo "(exit status $status: 1 means bad messages were found, as they should be here)"
echo
echo "== velora-util fix build --type D ...   (one NewOrderSingle, SOH shown as |)"
"$tool" fix build --type D --seq 7 --sender VELORA --target BROKER1 --time 20261121-09:30:00.125 \
  11=ORD000001 55=AAPL 54=1 38=100 40=2 44=187.25 --soh '|'
echo
echo "== velora-util price --file samples/prices.txt --decimals 2 --commas"
"$tool" price --file samples/prices.txt --decimals 2 --commas
echo
echo "== velora-util tape samples/trades.txt"
"$tool" tape samples/trades.txt
echo
echo "== velora-util symbol --file samples/symbols.txt   (each symbol against the five symbol rules)"
"$tool" symbol --file samples/symbols.txt
echo
echo "== velora-util filter --explain --or apple,msft,microsoft --not --word pineapple,ibmx samples/headlines.txt"
"$tool" filter --explain --or apple,msft,microsoft --not --word pineapple,ibmx samples/headlines.txt
