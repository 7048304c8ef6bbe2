#!/usr/bin/env bash
# Every public header alone under clang++, with the library's warnings as errors. The build does the same with
# its own compiler (tests/headers).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Headers are compiled as the only include of an empty file, twice, as a host's file may do.
check() {
    printf '#include "%s"\n#include "%s"\n' "$1" "$1" |
        clang++ -std=c++17 -I. -x c++ -fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror - ||
        { echo "$1 does not compile alone"; return 1; }
}
export -f check

git ls-files -co --exclude-standard -- core/ gl/ scene/ effects/ gltf/ algorithm/ |
    grep '\.h$' | grep -v 'Windows\.h$' |
    xargs -P "$(nproc)" -I{} bash -c 'check {}' || exit 1
echo "headers: fine under clang++"
