#!/usr/bin/env bash
# check-tidy.sh BUILD: clang-tidy over the compile database of a build folder, generated files left out.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! run-clang-tidy -quiet -p "$1" -j "$(nproc)" "^$PWD/(core|gl|algorithm|scene|effects|gltf|apps)/.*\.cpp$" >"$log" 2>&1; then
    grep -vE '^(clang-tidy|[0-9]+ warnings)' "$log"
    exit 1
fi
echo "tidy: fine"
