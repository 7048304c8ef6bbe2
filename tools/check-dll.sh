#!/usr/bin/env bash
# check-dll.sh DLL [--update]: what the DLL shows to the world. Its exported functions and data are those of
# tools/exports.txt, or for zorvik-face.dll of tools/exports-face.txt, so that a change of the surface is a decision
# (--update writes the list anew); nothing of other libraries is exported; and it needs no DLL that is not the system's,
# but zorvik-face.dll needs zorvik.dll.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

dll=${1:?usage: check-dll.sh DLL [--update]}
objdump=x86_64-w64-mingw32-objdump
list=tools/exports.txt
system='KERNEL32|msvcrt|OPENGL32|GDI32|USER32|SHELL32'
if [ "$(basename "$dll")" = zorvik-face.dll ]; then
    list=tools/exports-face.txt
    system="$system|zorvik"
fi
now=$(mktemp)
trap 'rm -f "$now"' EXIT

# Tables that a compiler makes for each class follow from the classes; constructors stand once for each of their kinds.
$objdump -p "$dll" | awk '/\[Ordinal\/Name Pointer\]/ { names = 1; next } NF == 0 { names = 0 } names { print $NF }' |
    c++filt | sed 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' |
    grep -vE '^((construction )?vtable|VTT|typeinfo|typeinfo name|(non-virtual|virtual) thunk) (for|to) (zv|kel_algorithm)::' |
    LC_ALL=C sort -u >"$now"

if [ "${2-}" = --update ]; then
    cp "$now" "$list"
fi

failed=0
if foreign=$(grep -vE '^(zv|kel_algorithm)::' "$now"); then
    printf 'exported, and not ours:\n%s\n' "$foreign"
    failed=1
fi
if ! diff "$list" "$now"; then
    echo "the exported surface has changed: < is gone, > is new; if that is meant: tools/check-dll.sh $dll --update"
    failed=1
fi
if others=$($objdump -p "$dll" | awk '/DLL Name:/ { print $3 }' | grep -viE "^($system)\.dll$"); then
    printf 'needs DLLs that are not the system'\''s:\n%s\n' "$others"
    failed=1
fi
[ $failed -eq 0 ] && echo "exports: $(wc -l <"$now") names, as listed"
exit $failed
