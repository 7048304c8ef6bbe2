#!/bin/sh
# wine-run.sh PROGRAM [ARGUMENT...]: what ctest starts a Windows program with. Wine's services inherit its output and
# would keep a pipe open long after the program has ended, so the output takes the way through a file.
export LC_ALL=C.UTF-8 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
output=$(mktemp) || exit 98
trap 'cat "$output"; rm -f "$output"; exit 143' TERM INT
wine "$@" </dev/null >"$output" 2>&1 &
wait $!
result=$?
cat "$output"
rm -f "$output"
exit $result
