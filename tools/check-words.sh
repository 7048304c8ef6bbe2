#!/usr/bin/env bash
# Words that must not stay in the tree: open ends, and paths of one developer's machine.
# The brackets keep this file from finding itself.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

failed=0
# find MEANING EXPRESSION
find_words() {
    local hits
    hits=$(git ls-files -co --exclude-standard -z | xargs -0 grep -InE "$2" 2>/dev/null || true)
    if [ -n "$hits" ]; then
        printf '%s:\n%s\n' "$1" "$hits"
        failed=1
    fi
}
find_words "open ends" '\b(T[O]DO|F[I]XME|X[X]X|H[A]CK)\b'
find_words "paths of a machine" '(^|[^[:alnum:]_./-])/(home|root|work|tmp|mnt|Users)/[[:alnum:]]'

[ $failed -eq 0 ] && echo "words: fine"
exit $failed
