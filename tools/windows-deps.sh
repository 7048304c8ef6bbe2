#!/usr/bin/env bash
# Builds what the Windows side links: libpng, GLEW and GoogleTest, static, from Debian's own sources,
# beside the header-only libraries. Prints the folder on standard output; a folder that exists is reused.
#
#   tools/windows-deps.sh            builds into the user's cache
#   JOBS=1 tools/windows-deps.sh     with that many compilers at once (default: all cores)
#
# The folder's name carries a hash of this script, of the one that fetches the sources, of the toolchain file and of the
# package versions, so that an update of any of them makes a new one.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
toolchain="$here/../cmake/mingw64.cmake"
jobs=${JOBS:-$(nproc)}

say() { printf '%s\n' "$*" >&2; }

versions=$(dpkg-query -W -f '${Package} ${Version}\n' \
    libpng-dev libglew-dev googletest libz-mingw-w64-dev g++-mingw-w64-x86-64-posix)
key=$( { cat "${BASH_SOURCE[0]}" "$here/debian-sources.sh" "$toolchain"; printf '%s\n' "$versions"; } |
    sha256sum | cut -c1-12)
cache="${XDG_CACHE_HOME:-${HOME:?}/.cache}/zorvik"
prefix="$cache/windows-deps-$key"

if [ -e "$prefix/complete" ]; then
    printf '%s\n' "$prefix"
    exit 0
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

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
. "$here/debian-sources.sh"
mkdir "$work/sources"
fetch_debian_sources "$work/sources" libpng1.6 glew
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
