#!/bin/bash
# format.sh -i: rewrites the formatting.   format.sh -n: says what is not formatted.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files -z --cached --others --exclude-standard '*.h' '*.cpp' \
    | xargs -0 clang-format-19 --Werror "$1"
