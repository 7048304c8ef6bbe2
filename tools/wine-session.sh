#!/bin/sh
# wine-session.sh COMMAND...: one X server and one resident Wine session around a command, so that each program in it
# starts in a moment. WINEPREFIX names the folder that holds the session; it is made when it is not there.
: "${WINEPREFIX:?}"
export WINEPREFIX LC_ALL=C.UTF-8 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
exec xvfb-run -a -s "-screen 0 640x480x24 +extension GLX" sh -c '
    quiet() { "$@" </dev/null >/dev/null 2>&1; }
    quiet wine wineboot -i || exit 97
    # A crash would open a window and wait for somebody to close it.
    quiet wine reg add "HKCU\\Software\\Wine\\WineDbg" /v ShowCrashDialog /t REG_DWORD /d 0 /f
    door=$(mktemp -u)
    mkfifo "$door"
    wine cmd.exe <"$door" >/dev/null 2>&1 & # stays, and its services with it, until the door closes
    exec 7>"$door"
    rm -f "$door"
    quiet wine cmd.exe /c exit # returns once the session is up
    "$@" 7>&-
    result=$?
    exec 7>&-
    quiet wineserver -k
    quiet wineserver -w
    exit $result' sh "$@"
