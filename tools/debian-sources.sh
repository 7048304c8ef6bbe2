# shellcheck shell=bash
# For other scripts to source: the machine's own Debian archives, asked for sources.

# fetch_debian_sources FOLDER PACKAGE...: unpacks the newest sources of each package that can be had in the FOLDER. The
# system's apt configuration stays as it is; all that is said goes to standard error.
fetch_debian_sources() {
    local folder=$1 apt=$1/.apt keyring=/usr/share/keyrings/debian-archive-keyring.gpg option="" package version options
    shift
    mkdir -p "$apt/lists/partial" "$apt/cache/archives/partial"
    [ ! -e "$keyring" ] || option="[signed-by=$keyring] "
    apt-get indextargets --format '$(ORIGIN)|$(REPO_URI)|$(RELEASE)|$(COMPONENT)' 'Created-By: Packages' |
        awk -F'|' -v option="$option" '$1 == "Debian" && $4 == "main" { print "deb-src " option $2 " " $3 " main" }' |
        sort -u >"$apt/sources.list"
    if ! [ -s "$apt/sources.list" ]; then
        echo "apt knows no Debian archive yet: run 'apt-get update' once" >&2
        return 1
    fi
    options=(-qq -o Dir::Etc::SourceList="$apt/sources.list" -o Dir::Etc::SourceParts=-
        -o Dir::State::Lists="$apt/lists" -o Dir::Cache="$apt/cache" -o APT::Sandbox::User="$(id -un)")
    apt-get "${options[@]}" update >&2
    for package in "$@"; do
        # An archive may list a version that its mirror does not hold yet: then the one before is tried.
        for version in $(apt-cache "${options[@]}" showsrc "$package" | awk '$1 == "Version:" { print $2 }' |
            sort -Vru); do
            (cd "$folder" && apt-get "${options[@]}" source "$package=$version" >>"$apt/log" 2>&1) && continue 2
            echo "$package $version cannot be fetched" >&2
        done
        [ ! -e "$apt/log" ] || cat "$apt/log" >&2
        return 1
    done
}
