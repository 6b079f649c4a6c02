#!/bin/bash
# fuzz.sh SECONDS: runs the decoder fuzzer from the kept seeds; a finding is left as a file in
# build/fuzz and belongs into Tests/Fuzz/seeds once mended.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZENTO_FUZZ=ON \
    -DCMAKE_CXX_COMPILER=clang++-19 -DSANITIZE=address,undefined >/dev/null
cmake --build build/fuzz --target decoder_fuzz -j "$(nproc)" -- --quiet
mkdir -p build/fuzz/corpus
cd build/fuzz
./decoder_fuzz -max_total_time="$1" -max_len=4096 -print_final_stats=1 corpus ../../Tests/Fuzz/seeds
