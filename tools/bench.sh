#!/bin/bash
# bench.sh BUILD: runs every benchmark program; each prints ratios against its limits.
set -euo pipefail
shopt -s nullglob
for program in "$1"/*_bench; do
    echo "== $(basename "$program")"
    "$program"
done
