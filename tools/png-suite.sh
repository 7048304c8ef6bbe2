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

# The machine's own Debian archives, asked for sources; the system's apt configuration stays as it is.
apt-get indextargets --format '$(ORIGIN)|$(REPO_URI)|$(RELEASE)|$(COMPONENT)' 'Created-By: Packages' |
    awk -F'|' '$1 == "Debian" && $4 == "main" {
        print "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] " $2 " " $3 " main" }' |
    sort -u >"$work/sources.list"
if ! [ -s "$work/sources.list" ]; then
    echo "png-suite: apt knows no Debian archive yet: run 'apt-get update' once" >&2
    exit 1
fi
mkdir -p "$work/lists/partial" "$work/cache/archives/partial"
options=(-qq -o Dir::Etc::SourceList="$work/sources.list" -o Dir::Etc::SourceParts=- -o Dir::State::Lists="$work/lists"
    -o Dir::Cache="$work/cache" -o APT::Sandbox::User="$(id -un)")
apt-get "${options[@]}" update >&2
# An archive may list a version that its mirror does not hold yet: the newest that can be had.
for version in $(apt-cache "${options[@]}" showsrc libpng1.6 | awk '$1 == "Version:" { print $2 }' | sort -Vru); do
    (cd "$work" && apt-get "${options[@]}" source "libpng1.6=$version" >>"$work/fetch.log" 2>&1) && break
done
pictures=("$work"/libpng1.6-*/contrib/{pngsuite,testpngs})
if ! [ -d "${pictures[0]}" ]; then
    cat "$work/fetch.log" >&2
    exit 1
fi
rm -rf "$suite"
mkdir -p "$suite"
cp -r "${pictures[@]}" "$suite"
touch "$suite/complete"
printf '%s\n' "$suite"
