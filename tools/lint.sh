#!/bin/bash
# Headers that compile alone, clang-tidy over every source.
set -euo pipefail
cd "$(dirname "$0")/.."
clang-tidy-19 --verify-config
cmake --preset dev >/dev/null
cmake --build build/dev --target all_verify_interface_header_sets -j "$(nproc)" -- --quiet
# A source is looked at again only when it, the rules or a header of ours has changed.
mkdir -p build/tidy
headers=$(git ls-files -z --cached --others --exclude-standard '*.h' .clang-tidy | xargs -0 cat | sha256sum)
check() {
    # What this build does not compile, the fuzzer's entry, has no command to be looked at with.
    grep -q "/$1\"" build/dev/compile_commands.json || return 0
    stamp=build/tidy/$(printf '%s%s' "$2" "$(sha256sum "$1")" | sha256sum | cut -c1-40)
    [[ -f $stamp ]] && return 0
    clang-tidy-19 --quiet -p build/dev "$1" 2>/dev/null && touch "$stamp"
}
export -f check
git ls-files -z --cached --others --exclude-standard 'Sources/*.cpp' 'Tests/*.cpp' 'Benchmarks/*.cpp' 'tools/*.cpp' \
    | xargs -0 -P "$(nproc)" -I{} bash -c 'check "$1" "$2"' _ {} "$headers"
echo "lint: clean"
