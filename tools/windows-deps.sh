#!/usr/bin/env bash
# Builds what the Windows side links: libpng, GLEW and GoogleTest, static, from Debian's own sources,
# beside the header-only libraries. Prints the folder on standard output; a folder that exists is reused.
#
#   tools/windows-deps.sh            builds into the user's cache
#   JOBS=1 tools/windows-deps.sh     with that many compilers at once (default: all cores)
#
# The folder's name carries a hash of this script, of the toolchain file and of the package versions, so that an update of
# any of them makes a new one.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
toolchain="$here/../cmake/mingw64.cmake"
jobs=${JOBS:-$(nproc)}

say() { printf '%s\n' "$*" >&2; }

versions=$(dpkg-query -W -f '${Package} ${Version}\n' \
    libpng-dev libglew-dev googletest libz-mingw-w64-dev g++-mingw-w64-x86-64-posix)
key=$( { cat "${BASH_SOURCE[0]}" "$toolchain"; printf '%s\n' "$versions"; } | sha256sum | cut -c1-12)
cache="${XDG_CACHE_HOME:-${HOME:?}/.cache}/zorvik"
prefix="$cache/windows-deps-$key"

if [ -e "$prefix/complete" ]; then
    printf '%s\n' "$prefix"
    exit 0
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The machine's own Debian archives, asked for sources; the system's apt configuration stays as it is.
write_source_list() {
    local keyring=/usr/share/keyrings/debian-archive-keyring.gpg option=""
    [ -e "$keyring" ] && option="[signed-by=$keyring] "
    apt-get indextargets --format '$(ORIGIN)|$(REPO_URI)|$(RELEASE)|$(COMPONENT)' 'Created-By: Packages' |
        awk -F'|' -v option="$option" '$1 == "Debian" && $4 == "main" { print "deb-src " option $2 " " $3 " main" }' |
        sort -u >"$work/sources.list"
    if ! [ -s "$work/sources.list" ]; then
        say "windows-deps: apt knows no Debian archive yet: run 'apt-get update' once"
        return 1
    fi
}

private_apt() {
    local program=$1
    shift
    "$program" -qq -o Dir::Etc::SourceList="$work/sources.list" -o Dir::Etc::SourceParts=- \
        -o Dir::State::Lists="$work/lists" -o Dir::Cache="$work/cache" -o APT::Sandbox::User="$(id -un)" "$@"
}

fetch_sources() {
    mkdir -p "$work/lists/partial" "$work/cache/archives/partial" "$work/sources"
    write_source_list
    private_apt apt-get update
    fetch_source libpng1.6
    fetch_source glew
}

# fetch_source PACKAGE: the newest version that can be had. An archive may list one that its mirror does not hold yet.
fetch_source() {
    local version
    for version in $(private_apt apt-cache showsrc "$1" | awk '$1 == "Version:" { print $2 }' | sort -Vru); do
        (cd "$work/sources" && private_apt apt-get source "$1=$version" >>"$work/fetch.log" 2>&1) && return 0
        say "windows-deps: $1 $version cannot be fetched, trying the one before"
    done
    cat "$work/fetch.log" >&2
    return 1
}

# build NAME SOURCE [cmake arguments]
build() {
    local name=$1 source=$2
    shift 2
    say "windows-deps: building $name"
    cmake -S "$source" -B "$work/build-$name" -G Ninja \
        -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DZV_WINDOWS_DEPS="$work/prefix" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$work/prefix" -DBUILD_SHARED_LIBS=OFF -Wno-dev "$@" >"$work/$name.log" 2>&1 &&
        cmake --build "$work/build-$name" --parallel "$jobs" --target install >>"$work/$name.log" 2>&1 ||
        { tail -n 40 "$work/$name.log" >&2; return 1; }
}

say "windows-deps: fetching sources"
fetch_sources >&2
build png "$(echo "$work"/sources/libpng1.6-*/)" -DPNG_SHARED=OFF -DPNG_TESTS=OFF -DPNG_EXECUTABLES=OFF
build glew "$(echo "$work"/sources/glew-*/)build/cmake" -DBUILD_UTILS=OFF
build gtest /usr/src/googletest -DBUILD_GMOCK=OFF

# Header-only libraries are the same on every system; each is linked alone, never all of /usr/include.
for headers in CLI stb nlohmann rapidjson; do
    [ -d "/usr/include/$headers" ] && ln -sfn "/usr/include/$headers" "$work/prefix/include/$headers"
done

# Two calls at once may both come here: the first to move its folder into place wins.
touch "$work/prefix/complete"
mkdir -p "$cache"
cp -a "$work/prefix" "$prefix.$$"
mv -T "$prefix.$$" "$prefix" 2>/dev/null || rm -rf "$prefix.$$"
printf '%s\n' "$prefix"
