#!/bin/bash
# build.sh PRESET [TARGET]: configures once, then builds; quiet unless something is wrong.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
target=${2:-all}
# Clones of one machine share what was compiled.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
if [[ ! -f build/$preset/build.ninja ]]; then
    echo "Building into build/$preset; the first time takes some minutes."
    mkdir -p "build/$preset"
    cmake --preset "$preset" >"build/$preset/configure.log" 2>&1 \
        || { cat "build/$preset/configure.log"; rm -f "build/$preset/build.ninja"; exit 1; }
fi
cmake --build "build/$preset" --target "$target" -j "$(nproc)" -- --quiet
