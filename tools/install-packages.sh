#!/bin/bash
# install-packages.sh GROUP…: installs the packages of those groups that are missing (packages.txt).
set -euo pipefail
list=$(dirname "$0")/packages.txt
wanted=$(awk -v groups=" $* " '!/^#/ && NF >= 2 && index(groups, " " $2 " ") {print $1}' "$list")

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    [[ -n ${ZENTO_SKIP_PACKAGES:-} ]] && exit 0
    echo "Zento's packages are listed for Debian 12 and this system has no apt-get:" \
         "install their counterparts from tools/packages.txt and set ZENTO_SKIP_PACKAGES=1." >&2
    exit 1
fi

# shellcheck disable=SC2086 # a list of words
installed=$(dpkg-query -W -f '${Package} ${db:Status-Status}\n' $wanted 2>/dev/null \
    | awk '$2 == "installed" {print $1}' | sort -u || true)
missing=$(comm -23 <(sort -u <<<"$wanted") <(echo "$installed"))
[[ -z $missing ]] && exit 0

as_root=()
if [[ $(id -u) -ne 0 ]]; then
    if ! command -v sudo >/dev/null; then
        echo "These packages are missing and only root can install them:" $missing >&2
        exit 1
    fi
    as_root=(sudo)
fi
echo "Installing:" $missing
export DEBIAN_FRONTEND=noninteractive
log=$(mktemp)
install() { "${as_root[@]}" apt-get install -y --no-install-recommends $missing >"$log" 2>&1; }
# The package lists of a fresh machine may be absent or old.
if ! install; then
    "${as_root[@]}" apt-get update >"$log" 2>&1 || true
    if ! install; then
        tail -n 5 "$log" >&2
        echo "The packages could not be installed; the whole log is $log." >&2
        exit 1
    fi
fi
rm -f "$log"
