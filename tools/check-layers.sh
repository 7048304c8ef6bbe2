#!/usr/bin/env bash
# Layers: an include never points upwards, and no public header shows GL's own header to a host.
set -euo pipefail
set -f # patterns are for git, not for the shell
cd "$(dirname "${BASH_SOURCE[0]}")/.."

folders="core gl algorithm scene effects gltf face"
# Which of our folders each one may include.
declare -A below=(
    [core]="core"
    [gl]="core gl"
    [algorithm]="core algorithm"
    [scene]="core gl algorithm scene"
    [effects]="core gl algorithm scene effects"
    [gltf]="core gl algorithm scene gltf"
    [face]="core gl algorithm scene face"
)

failed=0
report() { printf '%s: %s\n' "$1" "$2"; failed=1; }

while IFS=: read -r file line included; do
    layer=${file%%/*}
    case " ${below[$layer]} " in
        *" ${included%%/*} "*) ;;
        *) report "$file:$line" "$layer must not include \"$included\"" ;;
    esac
done < <(git ls-files -co --exclude-standard -z -- $(for f in $folders; do echo "$f/*.h $f/*.cpp"; done) |
    xargs -0 -r grep -HnoP '^\s*#\s*include\s*"\K[^"]+' || true)

while IFS=: read -r file line text; do
    [ "$file" = gltf/GtJson.h ] || report "$file:$line" "a public header must not include $text"
done < <(git ls-files -co --exclude-standard -z -- $(for f in $folders; do echo "$f/*.h"; done) |
    xargs -0 -r grep -HnoE '^\s*#\s*include\s*[<"](GL/|rapidjson/|windows\.h|Windows\.h|png\.h)[^>"]*[>"]' || true)

[ $failed -eq 0 ] && echo "layers: fine"
exit $failed
