#!/bin/bash
# screens.sh FOLDER [NAME…]: a picture of every screen, dark and light, at 100 and 200 percent.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
preset=${PRESET:-release}
folder=${1:?usage: tools/screens.sh FOLDER [NAME...]}
shift
"$root/tools/build.sh" "$preset" presentation_screens
for scale in 1 2; do
    QT_SCALE_FACTOR=$scale "$root/build/$preset/presentation_screens" "$folder" "$@"
done
echo "$folder"
