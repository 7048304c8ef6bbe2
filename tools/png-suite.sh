#!/usr/bin/env bash
# Fetches the test pictures that come inside libpng's Debian source package and prints the folder that holds them
# on standard output; a folder that exists is reused. Needs the network the first time.
set -euo pipefail

cache="${XDG_CACHE_HOME:-${HOME:?}/.cache}/zorvik"
suite="$cache/png-suite"
if [ -e "$suite/complete" ]; then
    printf '%s\n' "$suite"
    exit 0
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

. "$(dirname "${BASH_SOURCE[0]}")/debian-sources.sh"
fetch_debian_sources "$work" libpng1.6
pictures=("$work"/libpng1.6-*/contrib/{pngsuite,testpngs})
rm -rf "$suite"
mkdir -p "$suite"
cp -r "${pictures[@]}" "$suite"
touch "$suite/complete"
printf '%s\n' "$suite"
