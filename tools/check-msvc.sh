#!/usr/bin/env bash
# check-msvc.sh DEPS: the library's headers and sources under Microsoft's rules of syntax, mangling and class layout: clang for
# the Windows ABI of Visual Studio, libc++ and MinGW's headers. It is not Visual Studio, and nothing is linked; it finds
# what its compiler would refuse. DEPS is the folder that tools/windows-deps.sh prints.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

export ZV_DEPS=$1
llvm=/usr/lib/llvm-14
export ZV_LLVM=$llvm
# zorvik-face is looked at where its runtime's header is there.
folders="core/ gl/ scene/ effects/ gltf/ algorithm/"
ZV_FACES=$(tools/face-deps.sh --cached 2>/dev/null) && folders="$folders face/"
export ZV_FACES
[ -d "$llvm/include/c++/v1" ] || { echo "libc++-14-dev is not installed"; exit 1; }

# The standard library is told that it stands on Microsoft's runtime, and MinGW's headers that the compiler knows what
# theirs does.
check() {
    clang++ --target=x86_64-pc-windows-msvc -fms-compatibility -fms-extensions -fms-compatibility-version=19.29 \
        -fno-delayed-template-parsing -std=c++17 -nostdinc -fsyntax-only \
        -Wall -Wextra -Wpedantic -Wmicrosoft -Wno-language-extension-token -Werror \
        -D_UCRT -D_LIBCPP_NO_VCRUNTIME '-D__MINGW_ASM_CALL(x)=' -D__GNUC__=4 -D__GNUC_MINOR__=2 \
        -D__GNUC_PATCHLEVEL__=1 -D__INTRIN_H -D__GXX_RTTI=1 -D__EXCEPTIONS=1 -include tools/msvc/shim.h \
        -isystem "$ZV_LLVM/include/c++/v1" -isystem /usr/x86_64-w64-mingw32/include \
        -isystem "$ZV_LLVM/lib/clang/14.0.6/include" -isystem "$ZV_DEPS/include" -isystem "$ZV_FACES/include" -I. \
        -DGLEW_STATIC "$@"
}
# A header is compiled as a host sees it, a source as the library does.
check_file() {
    case $1 in
        *.h) printf '#include "%s"\n' "$1" | check -x c++ - ;;
        *) check -DZV_BUILDING_LIBRARY -DZV_BUILDING_FACE_LIBRARY "$1" ;;
    esac || { echo "$1 breaks Microsoft's rules"; return 1; }
}
export -f check check_file

git ls-files -co --exclude-standard -- $folders |
    grep -E '\.(h|cpp)$' | grep -vE 'Posix\.(h|cpp)$' |
    xargs -P "$(nproc)" -I{} bash -c 'check_file {}' || exit 1
echo "Microsoft's rules: fine"
