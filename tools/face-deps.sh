#!/usr/bin/env bash
# Fetches what zorvik-face links: the ONNX Runtime's C header, its Linux .so and its Windows .dll, out of one npm
# package. Prints the folder on standard output; a folder that exists is reused.
#
#   tools/face-deps.sh               fetches into the user's cache (an archive of 150 MB, of which 45 MB stay)
#   tools/face-deps.sh --cached      only looks: prints the folder, or fails when nothing was fetched yet
#
# The folder's name carries the version, so that an update makes a new one. npm takes the archive from the registry
# that it is set up for; its checksum is compared here.
set -euo pipefail

package=com.github.asus4.onnxruntime
version=0.4.9
sha256=e59788788818fdde1b2e522e766a21ba0f7d8391de55737abf81e32cc801785d

say() { printf '%s\n' "face-deps: $*" >&2; }

cache="${XDG_CACHE_HOME:-${HOME:?}/.cache}/zorvik"
prefix="$cache/face-deps-$version"

if [ -e "$prefix/complete" ]; then
    printf '%s\n' "$prefix"
    exit 0
fi
if [ "${1:-}" = --cached ]; then
    say "nothing fetched yet: run tools/face-deps.sh"
    exit 1
fi
command -v npm >/dev/null || { say "needs npm (Debian: apt-get install npm)"; exit 1; }

# Beside its place, so that the move at the end is a rename; the archive is large.
mkdir -p "$cache"
work=$(mktemp -d "$cache/face-deps.XXXXXX")
trap 'rm -rf "$work"' EXIT

say "fetching $package $version, 150 MB"
(cd "$work" && npm pack --loglevel=error --no-update-notifier "$package@$version" >/dev/null)
archive=$(echo "$work"/*.tgz)
if ! printf '%s  %s\n' "$sha256" "$archive" | sha256sum --check --status; then
    say "the archive is not the one expected: $(sha256sum <"$archive" | cut -d' ' -f1)"
    exit 1
fi

mkdir "$work/all"
# The C header is the same for every system; the package carries it with one of them only.
tar -xzf "$archive" -C "$work/all" --wildcards --no-wildcards-match-slash --strip-components=1 \
    'package/LICENSE' 'package/ThirdPartyNotices.txt' 'package/Plugins/Linux/x64/libonnxruntime.so' \
    'package/Plugins/Windows/x64/onnxruntime.dll' \
    'package/Plugins/iOS~/onnxruntime.xcframework/ios-arm64/onnxruntime.framework/Headers/onnxruntime_*.h'
mkdir -p "$work/prefix/include" "$work/prefix/linux-x64" "$work/prefix/windows-x64"
# The second one is what the first one includes at its top, the third one what it includes at its end.
for header in onnxruntime_c_api.h onnxruntime_error_code.h onnxruntime_ep_c_api.h; do
    mv "$(find "$work/all" -name "$header")" "$work/prefix/include/"
done
mv "$work/all/Plugins/Linux/x64/libonnxruntime.so" "$work/prefix/linux-x64/libonnxruntime.so.1" # its own name for itself
mv "$work/all/Plugins/Windows/x64/onnxruntime.dll" "$work/prefix/windows-x64/"
mv "$work/all/LICENSE" "$work/prefix/LICENSE.onnxruntime.txt"
mv "$work/all/ThirdPartyNotices.txt" "$work/prefix/ThirdPartyNotices.onnxruntime.txt"
touch "$work/prefix/complete"

# Two calls at once may both come here: the first to move its folder into place wins.
mv -T "$work/prefix" "$prefix" 2>/dev/null || [ -e "$prefix/complete" ]
printf '%s\n' "$prefix"
