#!/usr/bin/env bash
# compare-windows.sh: the same pictures by the Linux zvfx and by zvfx.exe under Wine, pixel by pixel. They may differ by one
# step of 8 bits. Runs inside tools/wine-session.sh, with both builds done.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

out=out/windows
rm -rf $out
mkdir -p $out
failed=0
compare() {
    local name=$1 input=$2 largest
    shift 2
    build/release/bin/zvfx --res res "$input" -o "$out/$name-linux.png" --quiet "$@"
    tools/wine-run.sh build/windows/bin/zvfx.exe --res res "$input" -o "$out/$name-windows.png" --quiet "$@"
    largest=$(pnmarith -difference <(pngtopnm "$out/$name-linux.png") <(pngtopnm "$out/$name-windows.png") |
        pamsumm -max -brief)
    printf '%-12s differs by at most %s of 255\n' "$name" "$largest"
    if [ "$largest" -gt 1 ]; then failed=1; fi
}
portrait=samples/portrait.png
compare plain $portrait
compare alpha samples/badge-rgba.png
compare odd $portrait --size 317x211
compare smooth $portrait --smooth 1 --sharpen 1
compare whiten $portrait --whiten 0.7
compare hsv $portrait --hsv 0.7,1.4,1.1
compare table $portrait --lut vivid
compare sticker $portrait --sticker hat --sticker glasses --faces samples/portrait.track.jsonl
compare seventies $portrait --effect 70s --frames 30
compare graffiti $portrait --effect graffiti --frames 53
compare legacy $portrait --gl compat --smooth 0.6 --hsv 1,1.1,1 --whiten 0.3 --lut natural,0.6
exit $failed
