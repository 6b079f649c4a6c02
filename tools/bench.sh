#!/bin/bash
# bench.sh BUILD [RESULTS]: runs every benchmark program; each prints ratios against its limits.
# With RESULTS, a file, the table is kept there too, with machine and date.
set -euo pipefail
shopt -s nullglob
build=$1
results=${2:-}

machine() {
    echo "# What was measured"
    echo
    echo "\`make bench RESULTS=1\`, $(date -u +%Y-%m-%d)," \
        "$(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1)," \
        "$(nproc) cores, $(awk '/MemTotal/ {printf "%.0f", $2 / 1048576}' /proc/meminfo) GiB," \
        "$(g++ --version | head -1), revision $(git rev-parse --short HEAD)."
    echo "Ratios and processor times are of one run; a limit stands beside what it limits."
    echo
    echo '```'
}

run() {
    for program in "$build"/*_bench; do
        echo "== $(basename "$program")"
        "$program"
    done
}

if [[ -z $results ]]; then
    run
    exit
fi
machine >"$results.new"
run | tee -a "$results.new"
echo '```' >>"$results.new"
mv "$results.new" "$results"
