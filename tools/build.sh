#!/bin/bash
# build.sh PRESET: configures once, then builds; quiet unless something is wrong.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
if [[ ! -f build/$preset/build.ninja ]]; then
    cmake --preset "$preset" >/tmp/zento-configure.$$ 2>&1 \
        || { cat /tmp/zento-configure.$$; rm -f /tmp/zento-configure.$$; exit 1; }
    rm -f /tmp/zento-configure.$$
fi
cmake --build "build/$preset" -j "$(nproc)" -- --quiet
